# Fails unless the linker has entered the load configuration into a 64-bit program.
#
#   cmake -DPROGRAM=FILE -P CheckLoadConfig.cmake
function(read_number offset result)
    file(READ ${PROGRAM} bytes OFFSET ${offset} LIMIT 4 HEX)
    string(REGEX REPLACE "(..)(..)(..)(..)" "0x\\4\\3\\2\\1" number "${bytes}")
    math(EXPR number ${number})
    set(${result} ${number} PARENT_SCOPE)
endfunction()

# Behind the signature and the file header stand 112 bytes of the optional header, then the data directories of
# 8 bytes each. The load configuration's is the eleventh.
read_number(60 header)
math(EXPR entry "${header} + 24 + 112 + 10 * 8")
read_number(${entry} address)
if(address EQUAL 0)
    file(REMOVE ${PROGRAM})
    message(FATAL_ERROR "The linker does not enter the load configuration into ${PROGRAM}. "
        "Use GNU ld 2.47 or newer, or lld.")
endif()
