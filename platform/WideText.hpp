#pragma once

#include <string>
#include <string_view>

/// Texts and paths as the interface of Windows takes them. Of this folder alone.
namespace Platform {

/// A text in UTF-16. What is not valid UTF-8 is taken as a text in the code page of the machine:
/// scripts that were written with older editors are.
std::wstring wideText(std::string_view text);

/// A text in UTF-8. Half a surrogate pair becomes U+FFFD.
std::string narrowText(std::wstring_view text);

/// The whole path, without "." and "..", with the current folder in front of a relative one; begins
/// with "\\.\" for a device, such as NUL. Empty if there is none.
std::wstring fullPath(std::string_view path);

/// The path for a function of the system: as it is or, where it would be too long for one, whole
/// and with the prefix "\\?\" ("Maximum Path Length Limitation", Microsoft Learn).
std::wstring systemPath(std::string_view path);

/// The number of `errno` for an error of GetLastError. EIO for those that have none.
int errorNumber(unsigned long error);

/// Sets `errno` from GetLastError.
void noteLastError();

}  // namespace Platform
