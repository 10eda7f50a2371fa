// Prints each kind of diagnostic: its name, what it counts as, and whether that is fixed.

#include <iostream>

#include "strict/Policy.hpp"

int main() {
    for (const Strict::Kind& kind : Strict::kinds())
        std::cout << kind.name << ' '
                  << (kind.severity == Strict::Severity::Error ? "error" : "warning")
                  << (kind.isFixed ? " fixed" : "") << '\n';
}
