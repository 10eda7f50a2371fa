// Prints the kinds of diagnostics with what they count as and when they are reported, separated by
// tabs.

#include <iostream>

#include "strict/diagnostics/Kinds.hpp"

int main() {
    for (const Strict::KindRow& kind : Strict::kinds()) {
        const bool isError = kind.severity == Strict::Severity::Error;
        std::cout << kind.name << "\t" << (kind.isFixed ? "always " : "")
                  << (isError ? "an error" : "a warning") << "\t" << kind.meaning << "\n";
    }
}
