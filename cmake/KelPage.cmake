# kel_embed_page(<target> <folder> <scripts...>)
#
# Puts a page into a program: <folder>/page.html with page.css and the scripts, one after the other, as
# the functions of html/PageParts.h. The page allows only this style and this script, by their hashes.
#
# The file also runs by itself when the program is built:
#   cmake -DFOLDER=... -DSCRIPTS=... -DOUTPUT=... -P KelPage.cmake

# Sets result to the base64 form of hexadecimal digits.
function(kel_base64_of_hex hex result)
  set(alphabet ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
  set(text)
  while(NOT hex STREQUAL "")
    string(SUBSTRING "${hex}0000" 0 6 group)
    string(LENGTH "${hex}" digits)
    foreach(shift IN ITEMS 18 12 6 0)
      math(EXPR place "(0x${group} >> ${shift}) & 63")
      string(SUBSTRING ${alphabet} ${place} 1 character)
      if((digits EQUAL 2 AND shift LESS 12) OR (digits EQUAL 4 AND shift EQUAL 0))
        set(character "=")
      endif()
      string(APPEND text ${character})
    endforeach()
    if(digits GREATER 6)
      string(SUBSTRING ${hex} 6 -1 hex)
    else()
      set(hex "")
    endif()
  endwhile()
  set(${result} ${text} PARENT_SCOPE)
endfunction()

# Sets result to the source by which a content security policy recognises the text.
function(kel_policy_hash text result)
  string(SHA256 hex "${text}")
  kel_base64_of_hex(${hex} base64)
  set(${result} "'sha256-${base64}'" PARENT_SCOPE)
endfunction()

# Sets result to a C++ function that returns the text. The bytes are listed one by one, because
# compilers limit the length of a literal.
function(kel_text_function name text result)
  string(HEX "${text}" hex)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
  string(REPEAT "'.x..'," 16 line)
  string(REGEX REPLACE "(${line})" "\\1\n" bytes "${bytes}")
  set(${result} "std::string_view ${name}() {
    static constexpr char bytes[] = {
${bytes}'\\0'};
    return {bytes, sizeof bytes - 1};
}
" PARENT_SCOPE)
endfunction()

# Sets result to the content of a file with line feeds as its line ends, so that every system has the
# same page.
function(kel_read_text file result)
  file(READ ${file} text)
  string(REPLACE "\r\n" "\n" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# Writes the source file with the page.
function(kel_write_page folder scripts output)
  kel_read_text(${folder}/page.html page)
  kel_read_text(${folder}/page.css style)
  set(script "\n")
  foreach(name IN LISTS scripts)
    kel_read_text(${folder}/${name} part)
    string(APPEND script "${part}")
  endforeach()
  set(style "\n${style}")
  kel_policy_hash("${style}" style_hash)
  kel_policy_hash("${script}" script_hash)
  foreach(name IN ITEMS style_hash script_hash style script)
    string(REPLACE "{{${name}}}" "${${name}}" page "${page}")
  endforeach()
  string(FIND "${page}" "{{data}}" data)
  string(SUBSTRING "${page}" 0 ${data} before)
  string(LENGTH "{{data}}" length)
  math(EXPR data "${data} + ${length}")
  string(SUBSTRING "${page}" ${data} -1 after)
  kel_text_function(pageBeforeData "${before}" before)
  kel_text_function(pageAfterData "${after}" after)
  file(WRITE ${output} "#include \"html/PageParts.h\"

namespace kel::tool {

${before}
${after}
} // namespace kel::tool
")
endfunction()

function(kel_embed_page target folder)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/PageParts.cpp)
  list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE scripts)
  list(JOIN ARGN "," names)
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DFOLDER=${folder} -DSCRIPTS=${names} -DOUTPUT=${output}
      -P ${PROJECT_SOURCE_DIR}/cmake/KelPage.cmake
    DEPENDS ${PROJECT_SOURCE_DIR}/cmake/KelPage.cmake ${folder}/page.html ${folder}/page.css ${scripts}
    VERBATIM)
  target_sources(${target} PRIVATE ${output})
endfunction()

if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  string(REPLACE "," ";" SCRIPTS "${SCRIPTS}")
  kel_write_page(${FOLDER} "${SCRIPTS}" ${OUTPUT})
endif()
