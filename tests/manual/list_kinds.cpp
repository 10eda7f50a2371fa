// Prints the kinds of diagnostics with what they count as, as chapter 15 of the manual lists them.

#include <iostream>

#include "strict/Policy.hpp"

int main() {
    for (const Strict::Kind& kind : Strict::kinds()) {
        const bool isError = kind.severity == Strict::Severity::Error;
        std::cout << kind.name << " " << (kind.isFixed ? "always " : "")
                  << (isError ? "an error" : "a warning") << "\n";
    }
}
