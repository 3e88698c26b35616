# Libraries from the distribution. Boost's and Eigen's headers serve both targets; for Windows they are reached through a
# folder of their own, so that no header of the native system slips in.

set(native_include /usr/include)
if(WIN32)
    set(headers ${CMAKE_BINARY_DIR}/headers)
    file(MAKE_DIRECTORY ${headers})
    file(CREATE_LINK ${native_include}/boost ${headers}/boost SYMBOLIC)
    file(CREATE_LINK ${native_include}/eigen3/Eigen ${headers}/Eigen SYMBOLIC)
else()
    set(headers ${native_include} ${native_include}/eigen3)
endif()

add_library(quorva_math INTERFACE)
target_include_directories(quorva_math SYSTEM INTERFACE ${headers})

add_library(quorva_parallel INTERFACE)
if(NOT WIN32)
    find_package(TBB REQUIRED)
    target_link_libraries(quorva_parallel INTERFACE TBB::tbb)
endif()

# GoogleTest comes as source, which builds for both targets.
set(INSTALL_GTEST OFF)
set(gtest_force_shared_crt ON)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
