// Prints the words of the script language, one a line, for the tests of the highlighters and of the
// fuzz targets' dictionary.

#include <iostream>
#include <string>

#include "parser/grammar/Keywords.hpp"

int main() {
    for (const std::string& keyword : Parser::keywords()) std::cout << keyword << '\n';
}
