# Installs a build, moves the installation to another folder, builds the client project against it and runs the client's
# programs.
#
#   cmake -DBUILD=<build folder> -DSOURCE=<repository> -DWORK=<scratch folder> -DCOMPONENTS="core volume"
#         [-DCXX_FLAGS=<flags>] [-DHEADERS=OFF] -P run_client.cmake

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed (${status}):\n${output}")
  endif()
  message(STATUS "${what}: done")
endfunction()

separate_arguments(components UNIX_COMMAND "${COMPONENTS}")
if(NOT DEFINED HEADERS)
  set(HEADERS ON)
endif()
set(prefix "${WORK}/moved")
file(REMOVE_RECURSE "${WORK}/prefix" "${prefix}" "${WORK}/client")

run("installing" "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/prefix")
file(RENAME "${WORK}/prefix" "${prefix}")

# What is installed names neither the source nor the build tree, so that it works without them.
file(GLOB package_files "${prefix}/lib/cmake/lys_colortable/*.cmake")
foreach(file IN LISTS package_files)
  file(READ "${file}" text)
  string(FIND "${text}" "${SOURCE}" place)
  if(NOT place EQUAL -1)
    message(FATAL_ERROR "${file} names the source tree ${SOURCE}")
  endif()
endforeach()

run("configuring the client" "${CMAKE_COMMAND}" -G Ninja -S "${SOURCE}/tests/installed" -B "${WORK}/client"
  "-DCMAKE_PREFIX_PATH=${prefix}" "-DLYS_CLIENT_COMPONENTS=${COMPONENTS}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
  "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}" "-DLYS_CLIENT_COMPILES_EVERY_HEADER=${HEADERS}")
run("building the client" "${CMAKE_COMMAND}" --build "${WORK}/client")
file(GLOB programs "${WORK}/client/bin/*_client")
list(LENGTH components expected)
list(LENGTH programs made)
if(made LESS expected)
  message(FATAL_ERROR "of ${expected} client programs only ${made} were made")
endif()
foreach(program IN LISTS programs)
  run("running ${program}" "${program}")
endforeach()
# The examples of the documentation are such projects as well.
list(FIND components colortable place)
if(NOT place EQUAL -1)
  foreach(example IN ITEMS embed handler)
    run("configuring the example ${example}" "${CMAKE_COMMAND}" -G Ninja -S "${SOURCE}/examples/${example}"
      -B "${WORK}/client/${example}" "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
      "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}")
    run("building the example ${example}" "${CMAKE_COMMAND}" --build "${WORK}/client/${example}")
  endforeach()
  run("drawing the window of the example" "${CMAKE_COMMAND}" -E env QT_QPA_PLATFORM=offscreen
    "${WORK}/client/embed/embed" "${WORK}/client/embed.png")
endif()
if(EXISTS "${BUILD}/bin/colortable")
  run("running the installed program" "${prefix}/bin/colortable" --help)
endif()
