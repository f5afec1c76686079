# Settings and helpers shared by every target of the repository.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# The build tree can be moved or copied as well.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
# Modules that a host loads at run time live apart from ordinary libraries.
set(LYS_MODULE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib/lys")
set(LYS_MODULE_INSTALL_DIRECTORY "${CMAKE_INSTALL_LIBDIR}/lys")

find_program(LYS_CCACHE ccache)
if(LYS_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_C_COMPILER_LAUNCHER "${LYS_CCACHE}")
  # The settings are what it asks for to cache sources that use precompiled headers.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${LYS_CCACHE}")
endif()

# -ffp-contract=off: every evaluation step keeps its documented precision, fused operations would change bits.
# -fno-gnu-unique: unique symbols would pin a module in memory for ever, so that it could never be unloaded.
add_compile_options(-ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif()

if(LYS_SANITIZE)
  add_compile_options(-fsanitize=${LYS_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${LYS_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # Types with hidden visibility differ between libraries for these two checks, though they are the same.
    add_compile_options(-fno-sanitize=vptr,function)
  endif()
endif()

# Counters that live in a shared mapping: what a process did that a test starts and kills counts as well.
set(LYS_COVERAGE_OPTIONS -fprofile-instr-generate -fcoverage-mapping -mllvm -runtime-counter-relocation)
if(LYS_COVERAGE)
  add_link_options(-fprofile-instr-generate)
endif()

add_library(lys_warnings INTERFACE)
target_compile_options(lys_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# Builds under sanitizers spend most of their time on the toolkit's headers; ordinary builds of the libraries keep to
# narrow includes.
function(lys_precompile target header)
  if(LYS_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE "${CMAKE_SOURCE_DIR}/${header}")
    # For ccache.
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  endif()
endfunction()

# Installs the public headers of the list under <prefix>/include/lys, in the folders that they have below `root`.
function(lys_install_headers root)
  foreach(header IN LISTS ARGN)
    if(header MATCHES "\\.h$" AND NOT header MATCHES "(_p|-inl)\\.h$")
      cmake_path(GET header PARENT_PATH folder)
      cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${root}")
      cmake_path(NORMAL_PATH folder)
      install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/lys/${folder}")
    endif()
  endforeach()
endfunction()

# lys_public_dependency(Qt6 6.4 COMPONENTS Widgets): what a client of the installed package has to find as well, because
# public headers or link interfaces of a library name it.
function(lys_public_dependency)
  list(JOIN ARGN " " words)
  set_property(GLOBAL APPEND PROPERTY LYS_PUBLIC_DEPENDENCIES "find_dependency(${words})")
endfunction()

# Has a module sealed after each link, and linked anew when the way of sealing changes.
function(lys_seal_module_file target)
  add_custom_command(TARGET ${target} POST_BUILD COMMAND lys_seal_module "$<TARGET_FILE:${target}>" VERBATIM)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "$<TARGET_FILE:lys_seal_module>")
endfunction()

# lys_add_library(NAME EXPORT_AS name [MODULE_FOLDER] FOLDERS dir... INCLUDE_ROOT dir)
# A shared library of all sources in the folders (relative to the caller), exported as lys::<name>.
function(lys_add_library target)
  cmake_parse_arguments(A "MODULE_FOLDER" "EXPORT_AS;INCLUDE_ROOT" "FOLDERS" ${ARGN})
  set(sources "")
  foreach(folder IN LISTS A_FOLDERS)
    file(GLOB found CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h")
    list(APPEND sources ${found})
  endforeach()
  add_library(${target} SHARED ${sources})
  add_library(lys::${A_EXPORT_AS} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${A_EXPORT_AS})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${A_INCLUDE_ROOT}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/lys>)
  # Headers with documented single-precision steps are inlined into clients, so the switch travels with the target.
  target_compile_options(${target} PUBLIC -ffp-contract=off)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:lys_warnings>)
  string(TOUPPER ${target} upper)
  target_compile_definitions(${target} PRIVATE ${upper}_BUILD)
  lys_precompile(${target} cmake/CommonHeaders.h)
  lys_install_headers("${A_INCLUDE_ROOT}" ${sources})
  if(A_MODULE_FOLDER)
    # A module is found by its plain name.
    set_target_properties(${target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${LYS_MODULE_OUTPUT_DIRECTORY}"
      INSTALL_RPATH "$ORIGIN;$ORIGIN/.." BUILD_WITH_INSTALL_RPATH ON)
    install(TARGETS ${target} EXPORT lys_colortable_targets LIBRARY DESTINATION "${LYS_MODULE_INSTALL_DIRECTORY}")
    # A sealed file must not change any more: its run path is the installed one from the start.
    lys_seal_module_file(${target})
    # Stripping while installing changes the file: it is sealed anew.
    install(CODE "if(CMAKE_INSTALL_DO_STRIP)
  execute_process(COMMAND \"$<TARGET_FILE:lys_seal_module>\"
    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${LYS_MODULE_INSTALL_DIRECTORY}/$<TARGET_FILE_NAME:${target}>\"
    COMMAND_ERROR_IS_FATAL ANY)
endif()")
  else()
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
      INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${target} EXPORT lys_colortable_targets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
  endif()
  set_property(GLOBAL APPEND PROPERTY LYS_LIBRARIES ${target})
endfunction()

# lys_add_program(NAME [FOLDERS dir...] LIBRARIES lib...): an installed program of all sources in the folders (default:
# the caller's). It finds its libraries beside it, wherever the tree is moved to.
function(lys_add_program target)
  cmake_parse_arguments(A "" "" "FOLDERS;LIBRARIES" ${ARGN})
  if(NOT A_FOLDERS)
    set(A_FOLDERS .)
  endif()
  set(sources "")
  foreach(folder IN LISTS A_FOLDERS)
    file(GLOB found CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h")
    list(APPEND sources ${found})
  endforeach()
  add_executable(${target} ${sources})
  target_link_libraries(${target} PRIVATE ${A_LIBRARIES} lys_warnings)
  set_target_properties(${target} PROPERTIES
    INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR};$ORIGIN/../${LYS_MODULE_INSTALL_DIRECTORY}")
  install(TARGETS ${target} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endfunction()

# lys_add_test_headers(NAME header LIBRARIES lib...): headers read once for all test programs that name it. Reading them
# anew was half of the time that tests took to compile.
function(lys_add_test_headers target header)
  cmake_parse_arguments(A "" "" "LIBRARIES" ${ARGN})
  add_executable(${target} precompiled/empty.cpp)
  target_link_libraries(${target} PRIVATE ${A_LIBRARIES} GTest::gmock GTest::gtest_main lys_warnings)
  target_compile_options(${target} PRIVATE ${LYS_TEST_OPTIONS})
  target_precompile_headers(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/precompiled/${header}")
  set_target_properties(${target} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
endfunction()

# Tests are compiled more often than they run: not optimised, that takes half as long. -fpch-preprocess is for ccache.
# Precompiled headers are of use only where all is alike: -fPIC, since the toolkit asks its programs for it.
set(LYS_TEST_OPTIONS -O0 -fPIC -fpch-preprocess)

# Seconds that a case may take. Code under a sanitizer takes several times as long, and to make a copy of its process, which
# cases do that trace one, takes a good part of a second.
set(LYS_TEST_TIMEOUT 120)
if(LYS_SANITIZE)
  set(LYS_TEST_TIMEOUT 600)
endif()

# lys_add_test(NAME FOLDER dir LIBRARIES lib... [WIDGETS | OPENGL] [THREADS] [OPTIMISED]): one GoogleTest program of all *.cpp files of
# a folder. WIDGETS: the cases need Qt Widgets and run without a display. OPENGL: they need an X display with OpenGL
# (./check starts one), carry the label "opengl" and run one after the other, because they share the display's focus.
# THREADS: some cases start threads; the program carries the label "threads" and belongs to the target threaded_tests.
# OPTIMISED: its cases compute much themselves.
function(lys_add_test target)
  cmake_parse_arguments(A "WIDGETS;OPENGL;THREADS;OPTIMISED" "FOLDER" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${A_FOLDER}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/${A_FOLDER}/*.h")
  if(NOT sources)
    return()
  endif()
  add_executable(${target} ${sources})
  target_link_libraries(${target} PRIVATE ${A_LIBRARIES} GTest::gmock GTest::gtest_main lys_warnings)
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  set(headers test_plain_headers)
  if(A_WIDGETS OR A_OPENGL)
    set(headers test_toolkit_headers)
    target_link_libraries(${target} PRIVATE Qt6::Test)
  endif()
  if(A_OPTIMISED)
    target_compile_options(${target} PRIVATE -O2)
  else()
    target_compile_options(${target} PRIVATE ${LYS_TEST_OPTIONS})
    target_precompile_headers(${target} REUSE_FROM ${headers})
  endif()
  set(properties TIMEOUT ${LYS_TEST_TIMEOUT})
  if(A_WIDGETS)
    list(APPEND properties ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  elseif(A_OPENGL)
    list(APPEND properties ENVIRONMENT "QT_QPA_PLATFORM=xcb" LABELS opengl RESOURCE_LOCK display)
  endif()
  if(A_THREADS)
    list(APPEND properties LABELS threads)
    if(NOT TARGET threaded_tests)
      add_custom_target(threaded_tests)
    endif()
    add_dependencies(threaded_tests ${target})
  endif()
  # What the toolkit remembers, the folder of the last file dialog for instance, is not the developer's.
  list(APPEND properties ENVIRONMENT_MODIFICATION "XDG_CONFIG_HOME=set:${CMAKE_BINARY_DIR}/tests/config")
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${target}." PROPERTIES ${properties})
endfunction()
