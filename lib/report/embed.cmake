# SPDX-License-Identifier: Apache-2.0
# Writes a C++ source with the style sheet and the script of the page, and the hashes by which the page's policy
# admits them: cmake -DOUTPUT=FILE -DSTYLES=FILE,... -DSCRIPTS=FILE,... -P embed.cmake

# Sets `result` to the base64 text of a number in hexadecimal digits.
function(base64 hex result)
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(text "")
  while(NOT hex STREQUAL "")
    # Three bytes are four characters; what lacks at the end is padded.
    string(SUBSTRING "${hex}" 0 6 digits)
    string(LENGTH "${digits}" length)
    string(SUBSTRING "${hex}" ${length} -1 hex)
    string(SUBSTRING "${digits}0000" 0 6 group)
    foreach(shift 18 12 6 0)
      math(EXPR position "(0x${group} >> ${shift}) & 63")
      string(SUBSTRING "${alphabet}" ${position} 1 character)
      string(APPEND text "${character}")
    endforeach()
    if(length LESS 6)
      math(EXPR kept "${length} / 2 + 1")
      math(EXPR padding "3 - ${length} / 2")
      string(LENGTH "${text}" end)
      math(EXPR end "${end} - 4 + ${kept}")
      string(SUBSTRING "${text}" 0 ${end} text)
      string(REPEAT "=" ${padding} equals)
      string(APPEND text "${equals}")
    endif()
  endwhile()
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# Sets `result` to the definitions of a text and its hash.
function(constants name text result)
  string(SHA256 hash "${text}")
  base64(${hash} hash)
  set(${result} "
const char* const k${name} = R\"embedded(${text})embedded\";
const char* const k${name}Hash = \"sha256-${hash}\";
" PARENT_SCOPE)
endfunction()

# Sets `result` to the contents of files with commas between their names.
function(read_all files result)
  set(text "")
  string(REPLACE "," ";" files "${files}")
  foreach(file ${files})
    file(READ ${file} part)
    string(APPEND text "${part}")
  endforeach()
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

read_all("${STYLES}" style)
read_all("${SCRIPTS}" script)
constants(Style "${style}" style)
constants(Script "${script}" script)
file(WRITE ${OUTPUT} "// Written by embed.cmake.
#include \"page.h\"

namespace NVORNQDX20::NReport {
${style}${script}
}  // namespace NVORNQDX20::NReport
")
