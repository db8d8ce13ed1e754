"""Settings by their names. A type checker sees the generated _access.pyi instead, which has the type of each."""
from __future__ import annotations

import abc
import fnmatch
from typing import Iterator, Tuple

from ._catalogue import SETTINGS
from ._settings import Setting, SettingsView, Value, find

# Secrets are not among them: those are shown only to somebody who asks for exactly them.
_LISTED = tuple(setting.name for setting in SETTINGS.values() if setting.readable and not setting.secret)


class SettingAccess(abc.ABC):
    """printer["fax.redials"]: what a Printer has of a dictionary. Every look asks the printer."""

    @abc.abstractmethod
    def read(self, name: str) -> Value:
        """The value of the setting of that name, which may be any text."""

    @abc.abstractmethod
    def write(self, name: str, value: Value) -> None:
        """Sets the setting of that name, which may be any text."""

    def __getitem__(self, name: str) -> Value:
        return self.read(name)

    def __setitem__(self, name: str, value: Value) -> None:
        self.write(name, value)

    def __iter__(self) -> Iterator[str]:
        return iter(_LISTED)

    def __len__(self) -> int:
        return len(_LISTED)

    def __contains__(self, name: object) -> bool:
        return name in SETTINGS

    def keys(self) -> Tuple[str, ...]:
        """The names of the settings that can be read, without the secrets: so dict(printer) reads all of them."""
        return _LISTED

    def settings(self, pattern: str = "*") -> SettingsView:
        """A view of the settings that can be read and whose names match the pattern, such as "fax.*"; no secrets."""
        return SettingsView(self.read, fnmatch.filter(_LISTED, pattern))

    def describe(self, name: str) -> Setting:
        """What is known of a setting without asking the printer: type, access, range, words."""
        return find(SETTINGS, name)


class AsyncSettingAccess(abc.ABC):
    """The same to be awaited."""

    @abc.abstractmethod
    async def read(self, name: str) -> Value:
        """The value of the setting of that name, which may be any text."""

    @abc.abstractmethod
    async def write(self, name: str, value: Value) -> None:
        """Sets the setting of that name, which may be any text."""

    async def get(self, name: str) -> Value:
        """The value of a setting."""
        return await self.read(name)

    async def set(self, name: str, value: Value) -> None:
        """Sets a setting."""
        await self.write(name, value)
