#include "platform/Arguments.hpp"

#include <windows.h>

#include <shellapi.h>

#include <memory>

#include "platform/WideText.hpp"

namespace Platform {

Arguments::Arguments(int /*count*/, const char* const* /*values*/) {
    // What `main` got lacks the characters that the code page of the machine has not.
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> wide(
        ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
    if (!wide) return;
    for (const wchar_t* const text : std::span(wide.get(), static_cast<std::size_t>(count)))
        texts_.push_back(narrowText(text));
    for (const std::string& text : texts_) values_.push_back(text.c_str());
}

}  // namespace Platform
