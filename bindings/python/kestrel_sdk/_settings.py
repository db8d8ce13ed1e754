"""What a setting is: its row of the catalogue, and the way of its values to C and back."""
from __future__ import annotations

import ctypes
import dataclasses
import difflib
import enum
import ipaddress
from typing import (Any, Callable, Dict, Iterable, Iterator, Mapping, NamedTuple, Optional, Tuple, Type, TypeVar,
                    Union)

from ._errors import InvalidValueError, SettingAccessError, UnknownSettingError

Value = Union[bool, int, str, ipaddress.IPv4Address]
"""What a setting can hold. The enumerations are numbers that know their words."""

NUMBERS: Dict[str, Any] = {"U8": ctypes.c_uint8, "S8": ctypes.c_int8, "U16": ctypes.c_uint16, "U32": ctypes.c_uint32,
                           "S32": ctypes.c_int32, "Percent": ctypes.c_uint8}

AnyChoice = TypeVar("AnyChoice", bound="Choice")


class Choice(enum.IntEnum):
    """A number with a word: the base of all enumerations. FaxMode("fine black") finds a member by its word or its name,
    whatever the case and the separators; FaxMode(3) by its number; str() gives the device's word."""

    word: str

    def __new__(cls: Type[AnyChoice], value: Union[int, str], word: str = "") -> AnyChoice:
        member = int.__new__(cls, value)
        member._value_ = int(value)
        member.word = word
        return member

    @classmethod
    def _missing_(cls, value: object) -> Optional[Choice]:
        if not isinstance(value, str):
            return None
        wanted = _letters(value)
        return next((member for member in cls if wanted in (_letters(member.word), _letters(member.name))), None)

    def __str__(self) -> str:
        return self.word

    def __format__(self, form: str) -> str:
        return format(self.word, form)


def _letters(text: str) -> str:
    return "".join(filter(str.isalnum, text)).casefold()


@dataclasses.dataclass(frozen=True)
class Setting:
    """A row of the catalogue: all that is known of a setting without asking the printer."""

    name: str
    """What people call it: "fax.redials"."""
    about: str
    """A phrase for help, with the unit where the printer fixes one."""
    type: Type[Any]
    """bool, int, str, ipaddress.IPv4Address, or a Choice."""
    access: str
    """ReadWrite, ReadOnly, WriteOnly, or Command: an action that takes a value."""
    base: str
    """The name of its C functions, without Get and Set."""
    key: str = ""
    """Its key in the printer's command language; empty when the printer is not asked."""
    index: Optional[int] = None
    """Of one of several values behind the same functions."""
    range: Optional[Tuple[int, int]] = None
    """The lowest and highest number that the printer takes. It is the printer that judges, not this package."""
    max_length: Optional[int] = None
    """The longest text, in UTF-16 units."""
    secret: bool = False
    """Shown only to those who ask for exactly this setting."""
    read: str = ""
    """The width of a number: U8 S8 U16 U32 S32 or Percent."""
    write: str = ""
    """The width of a number that is set."""

    @property
    def readable(self) -> bool:
        return self.access in ("ReadWrite", "ReadOnly")

    @property
    def writable(self) -> bool:
        """Whether it can be assigned to. A command cannot: it is run."""
        return self.access in ("ReadWrite", "WriteOnly")

    @property
    def words(self) -> Tuple[str, ...]:
        """The device's words of an enumeration, in the order of their numbers."""
        return tuple(member.word for member in self.type) if issubclass(self.type, Choice) else ()

    @property
    def allowed(self) -> str:
        """What may be written, in words."""
        return _FORMS[self._form].allowed(self)

    @property
    def getter(self) -> str:
        return "Get" + self.base

    @property
    def setter(self) -> str:
        return self.base if self.access == "Command" else "Set" + self.base

    def demand(self, readable: bool = False, writable: bool = False, command: bool = False) -> Setting:
        """Itself, when it can be used so."""
        if readable and not self.readable:
            raise SettingAccessError(f"{self.name} cannot be read: " + self._instead())
        if writable and not self.writable or command and self.access != "Command":
            raise SettingAccessError(f"{self.name} cannot be {'set' if writable else 'run'}: " + self._instead())
        return self

    def buffer(self, pointer: Any) -> Any:
        """What its getter writes to. `pointer`: the getter's parameter."""
        return _FORMS[self._form].buffer(self, pointer)

    def decode(self, buffer: Any) -> Value:
        """The value that the getter has written."""
        return _FORMS[self._form].decode(self, buffer)

    def encode(self, value: object) -> Any:
        """The argument of its setter."""
        return _FORMS[self._form].encode(self, value)

    @property
    def _form(self) -> Type[Any]:
        if issubclass(self.type, Choice):
            return Choice
        return self.type

    def _instead(self) -> str:
        return {"ReadOnly": "it can only be read", "WriteOnly": "it can only be set",
                "Command": f'it is an action, run("{self.name}", ...)',
                "ReadWrite": "it is a setting, to be read and assigned to"}[self.access]

    def refuse(self, value: object, reason: str) -> InvalidValueError:
        shown = "this value" if self.secret else repr(value)
        return InvalidValueError(f"{self.name} cannot be {shown}: {reason}; allowed: {self.allowed}")


class _Form(NamedTuple):
    allowed: Callable[[Setting], str]
    buffer: Callable[[Setting, Any], Any]
    decode: Callable[[Setting, Any], Value]
    encode: Callable[[Setting, object], Any]


def _new(_setting: Setting, pointer: Any) -> Any:
    return pointer._type_()


def _encode_flag(setting: Setting, value: object) -> int:
    if not isinstance(value, bool):
        raise setting.refuse(value, "it is neither True nor False")
    return int(value)


def width(number: str) -> Tuple[int, int]:
    """The lowest and highest number of that width."""
    kind = NUMBERS[number]
    bits = 8 * ctypes.sizeof(kind)
    return (-1 << (bits - 1), (1 << (bits - 1)) - 1) if kind(-1).value < 0 else (0, (1 << bits) - 1)


def _encode_number(setting: Setting, value: object) -> int:
    if not isinstance(value, int) or isinstance(value, (bool, Choice)):
        raise setting.refuse(value, "it is not a whole number")
    lowest, highest = width(setting.write)
    if not lowest <= value <= highest:
        raise setting.refuse(value, f"it is not within {lowest} to {highest}")
    return int(value)


def _decode_choice(setting: Setting, buffer: Any) -> Value:
    return setting.type(buffer.value)  # type: ignore[no-any-return]


def _encode_choice(setting: Setting, value: object) -> int:
    # A member of another enumeration is a number too, and seldom meant.
    if not isinstance(value, bool) and (not isinstance(value, Choice) or isinstance(value, setting.type)):
        try:
            return int(setting.type(value))
        except ValueError:
            pass
    raise setting.refuse(value, "it is none of the words")


def utf16(text: str) -> bytes:
    """A zero-terminated text for C."""
    return text.encode("utf-16-le", "surrogatepass") + b"\0\0"


def text_of(units: Any) -> str:
    """The text in a buffer of UTF-16 units, up to its terminator or to the buffer's end."""
    return bytes(units).decode("utf-16-le", "replace").partition("\0")[0]


def _encode_text(setting: Setting, value: object) -> bytes:
    if not isinstance(value, str):
        raise setting.refuse(value, "it is no text")
    # Control codes stand for the command language's own characters on the way and would come back as those.
    if any(character < " " or "\x7f" <= character < "\xa0" for character in value):
        raise setting.refuse(value, "it holds control characters")
    encoded = utf16(value)
    if setting.max_length is not None and len(encoded) // 2 - 1 > setting.max_length:
        raise setting.refuse(value, f"it has {len(encoded) // 2 - 1} characters")
    return encoded


def _decode_address(_setting: Setting, buffer: Any) -> Value:
    return ipaddress.IPv4Address(bytes(buffer))


def address_number(value: object) -> int:
    """An address as the functions take it: its first byte is the lowest. ValueError when it is none."""
    if isinstance(value, (str, ipaddress.IPv4Address)):
        return int.from_bytes(ipaddress.IPv4Address(value).packed, "little")
    raise ValueError("no address")


def _encode_address(setting: Setting, value: object) -> int:
    try:
        return address_number(value)
    except ValueError:
        raise setting.refuse(value, "it is not an address of four numbers") from None


_FORMS: Mapping[Type[Any], _Form] = {
    bool: _Form(lambda setting: "True, False", _new, lambda setting, buffer: bool(buffer.value), _encode_flag),
    # A getter may have another type than the row: a signed number comes in an unsigned one.
    int: _Form(lambda setting: "{} to {}".format(*setting.range or width(setting.write)), _new,
               lambda setting, buffer: int(NUMBERS[setting.read](buffer.value).value), _encode_number),
    Choice: _Form(lambda setting: " ".join(setting.words), _new, _decode_choice, _encode_choice),
    # Its size is not passed to the getter: a smaller one would be overrun.
    str: _Form(lambda setting: f"at most {setting.max_length} characters",
               lambda setting, pointer: ctypes.create_string_buffer(2 * ((setting.max_length or 0) + 1)),
               lambda setting, buffer: text_of(buffer), _encode_text),
    ipaddress.IPv4Address: _Form(lambda setting: "a.b.c.d", lambda setting, pointer: (ctypes.c_uint8 * 4)(),
                                 _decode_address, _encode_address),
}


def find(settings: Mapping[str, Setting], name: str) -> Setting:
    """The setting of that name or key, whatever the case."""
    if name in settings:
        return settings[name]
    lower = name.lower() if isinstance(name, str) else ""
    for setting in settings.values():
        if lower and lower in (setting.name, setting.key.lower()):
            return setting
    near = difflib.get_close_matches(lower, settings, n=3) or [
        known for known in settings if lower and lower in known.split(".", 1)[1]]
    advice = "did you mean " + " or ".join(near[:3]) + "?" if near else "kestrel_sdk.SETTINGS has all names"
    raise UnknownSettingError(f'there is no setting "{name}"; {advice}')


class SettingsView(Mapping[str, Value]):
    """The settings that can be read, by name. Every look asks the printer."""

    def __init__(self, read: Callable[[str], Value], names: Iterable[str]) -> None:
        self._read = read
        self._names = tuple(names)

    def __getitem__(self, name: str) -> Value:
        if name not in self._names:
            raise UnknownSettingError(f'"{name}" is none of these {len(self._names)} settings')
        return self._read(name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._names)

    def __len__(self) -> int:
        return len(self._names)
