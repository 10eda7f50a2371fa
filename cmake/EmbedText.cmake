# Run with cmake -P: writes the C++ file OUT, in which NAMESPACE::NAME is the text of FILE.
# A literal each line stays below the length limit of every compiler.
file(READ ${FILE} text)
string(REGEX REPLACE "([\\\"])" "\\\\\\1" text "${text}")
string(REGEX REPLACE "([^\n]*)\n" "    \"\\1\\\\n\"\n" text "${text}")
cmake_path(GET FILE FILENAME name)
file(WRITE ${OUT} "// Made by CMake from ${name}.
#include \"${HEADER}\"

namespace ${NAMESPACE} {

const char* ${NAME}() {
    return
${text}    ;
}

}  // namespace ${NAMESPACE}
")
