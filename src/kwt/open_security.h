// The one access rule and the one naming rule of all named objects of the product.
#pragma once

#include <optional>

#include "kwt/wide_text.h"

namespace kwt {

/// Security attributes with a present, null access-control list: any account of any session may open the
/// object. Not inheritable. Not copied: the attributes point into the object itself.
class OpenSecurity final {
  public:
    OpenSecurity();
    OpenSecurity(const OpenSecurity&) = delete;
    OpenSecurity& operator=(const OpenSecurity&) = delete;

    /// Null when the system refused to build the descriptor.
    [[nodiscard]] SECURITY_ATTRIBUTES* Get() { return valid_ ? &attributes_ : nullptr; }

  private:
    SECURITY_DESCRIPTOR descriptor_{};
    SECURITY_ATTRIBUTES attributes_{};
    bool valid_ = false;
};

/// The system's name of an object: "Global\" in front of `name` when `global` is set and the name does not
/// begin with it already (in any letter case). A null name gives an unnamed object, that is, no text.
class ObjectPath final {
  public:
    ObjectPath(const WCHAR* name, bool global);

    /// False when the formed name does not fit the system's limit of 259 characters; the last-error value is
    /// then 206. Nothing is ever cut.
    [[nodiscard]] bool Fits() const { return fits_; }

    /// The name to pass to the system; null for an unnamed object.
    [[nodiscard]] const WCHAR* Get() const { return named_ ? text_ : nullptr; }

  private:
    WCHAR text_[MAX_PATH];
    bool named_ = false;
    bool fits_ = true;
};

}  // namespace kwt
