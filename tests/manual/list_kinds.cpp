// Prints the kinds of diagnostics with what they count as, as chapter 15 of the manual lists them.

#include <iostream>

#include "strict/diagnostics/Kinds.hpp"

int main() {
    for (const Strict::KindRow& kind : Strict::kinds()) {
        const bool isError = kind.severity == Strict::Severity::Error;
        std::cout << kind.name << " " << (kind.isFixed ? "always " : "")
                  << (isError ? "an error" : "a warning") << "\n";
    }
}
