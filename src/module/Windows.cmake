# The Windows module's export definition, import of the host's library, type library and version.
set_target_properties(QUORVAMC4R PROPERTIES PREFIX "" SUFFIX .xll)

list(JOIN QUORVA_EXPORTED "\n    " names)
file(CONFIGURE OUTPUT exports.def CONTENT "LIBRARY QUORVAMC4R.xll\nEXPORTS\n    @names@\n" @ONLY)
target_sources(QUORVAMC4R PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/exports.def)

# The host's library is imported by ordinal, so an import library is made from its definition.
find_program(QUORVA_DLLTOOL x86_64-w64-mingw32-dlltool REQUIRED)
add_custom_command(
    OUTPUT libxlcall32.a
    COMMAND ${QUORVA_DLLTOOL} -d ${CMAKE_CURRENT_SOURCE_DIR}/xlcall32.def -l libxlcall32.a
    DEPENDS xlcall32.def
    VERBATIM)
add_custom_target(quorva_xlcall32_import DEPENDS libxlcall32.a)
add_dependencies(QUORVAMC4R quorva_xlcall32_import)
target_link_libraries(QUORVAMC4R PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/libxlcall32.a)
set_target_properties(QUORVAMC4R PROPERTIES LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/libxlcall32.a)

# Type library and version are resources of the module.
find_program(QUORVA_WIDL x86_64-w64-mingw32-widl REQUIRED)
find_program(QUORVA_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
add_custom_command(
    OUTPUT QUORVAMC4R.tlb
    COMMAND ${QUORVA_WIDL} -t -o QUORVAMC4R.tlb ${CMAKE_CURRENT_SOURCE_DIR}/QUORVAMC4R.idl
    COMMAND ${QUORVA_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/name_entries.py QUORVAMC4R.tlb
    DEPENDS QUORVAMC4R.idl name_entries.py
    VERBATIM)
configure_file(QUORVAMC4R.rc.in QUORVAMC4R.rc @ONLY)
enable_language(RC)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/QUORVAMC4R.rc PROPERTIES
    OBJECT_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/QUORVAMC4R.tlb
    COMPILE_OPTIONS --include-dir=${CMAKE_CURRENT_BINARY_DIR})
target_sources(QUORVAMC4R PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/QUORVAMC4R.rc)
