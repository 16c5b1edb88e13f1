# SPDX-License-Identifier: Apache-2.0
# Run as a script: writes OUTPUT, a source that returns the bytes of INPUTS, files separated by "|",
# from FUNCTION, declared in HEADER. As character literals, so that no byte of the text can end a
# string early.
string(REPLACE "|" ";" INPUTS "${INPUTS}")
set(bytes "")
foreach(input IN LISTS INPUTS)
    file(READ "${input}" part HEX)
    string(APPEND bytes "${part}")
endforeach()
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," literals "${bytes}")
string(REGEX REPLACE "(('..x..',){12})" "\\1\n    " literals "${literals}")
file(WRITE "${OUTPUT}" "// Generated from a text file of the source tree; edit that.
#include \"${HEADER}\"

namespace Quorvane {

namespace {

constexpr char text[] = {
    ${literals}'\\0'};

} // namespace

std::string_view ${FUNCTION}() {
    return {text, sizeof text - 1};
}

} // namespace Quorvane
")
