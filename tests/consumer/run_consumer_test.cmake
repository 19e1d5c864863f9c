# Installs the built project into a private prefix, then configures, builds and runs the consumer
# project against it. Run with cmake -P; every step must succeed.
#   XUN_BUILD_DIR      the project's build folder (already built)
#   CONSUMER_SOURCE    this folder
#   WORK_DIR           scratch folder for the prefix and the consumer's build
#   GENERATOR, MAKE_PROGRAM, CXX_COMPILER, CONFIG   as in the project's build
#   EXAMPLE_TEMPLATE   a template the installed xuntemplate (when built) describes
#   SCANNED_TEMPLATE   a template with a page image the installed xuntemplate registers
cmake_minimum_required(VERSION 3.25)

foreach(var XUN_BUILD_DIR CONSUMER_SOURCE WORK_DIR GENERATOR CXX_COMPILER EXAMPLE_TEMPLATE
            SCANNED_TEMPLATE)
  if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
    message(FATAL_ERROR "run_consumer_test: ${var} is not set")
  endif()
endforeach()

set(prefix "${WORK_DIR}/prefix")
set(consumer_build "${WORK_DIR}/build")
# Start clean so a stale install cannot hide a broken one.
file(REMOVE_RECURSE "${prefix}" "${consumer_build}")

function(run_step name)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "run_consumer_test: ${name} failed (${result})")
  endif()
endfunction()

set(config_args)
if(CONFIG)
  set(config_args --config "${CONFIG}")
endif()

run_step(install "${CMAKE_COMMAND}" --install "${XUN_BUILD_DIR}" --prefix "${prefix}" ${config_args})

set(configure_args -S "${CONSUMER_SOURCE}" -B "${consumer_build}" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
if(MAKE_PROGRAM)
  list(APPEND configure_args "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}")
endif()
if(CONFIG)
  list(APPEND configure_args "-DCMAKE_BUILD_TYPE=${CONFIG}")
endif()
run_step(configure "${CMAKE_COMMAND}" ${configure_args})

# The package must come from the fresh install, not from anywhere else on the machine.
file(STRINGS "${consumer_build}/CMakeCache.txt" found_dir REGEX "^XUNTemplate91_DIR:")
string(REGEX REPLACE "^[^=]*=" "" found_dir "${found_dir}")
file(REAL_PATH "${prefix}" real_prefix)
file(REAL_PATH "${found_dir}" real_found_dir)
string(FIND "${real_found_dir}" "${real_prefix}/" at)
if(NOT at EQUAL 0)
  message(FATAL_ERROR "run_consumer_test: package found in ${found_dir}, not under ${prefix}")
endif()

run_step(build "${CMAKE_COMMAND}" --build "${consumer_build}" ${config_args})

# The consumer finds the installed shared library through the build RPATH CMake gives it.
set(consumer_exe "${consumer_build}/consumer")
if(CONFIG AND EXISTS "${consumer_build}/${CONFIG}/consumer")
  set(consumer_exe "${consumer_build}/${CONFIG}/consumer")
endif()
run_step(run "${consumer_exe}")

# The installed tool runs from the prefix as it is, without a loader path: its run path leads to
# the installed library. `info` reads a template, so the library really is loaded and used.
if(EXISTS "${prefix}/bin/xuntemplate")
  execute_process(COMMAND "${CMAKE_COMMAND}" -E env --unset=LD_LIBRARY_PATH
                          "${prefix}/bin/xuntemplate" info "${EXAMPLE_TEMPLATE}"
                  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 0 OR NOT output MATCHES "Valid for reading: yes")
    message(FATAL_ERROR "run_consumer_test: the installed xuntemplate failed (${result}):\n"
                        "${output}${errors}")
  endif()
endif()

# The engine and the image module are installed beside the library, and the installed library
# finds the engine there with no setting: every region of the scanned example registers (without
# the engine none would, and the tool would exit 1).
file(GLOB_RECURSE library "${prefix}/libXUNTemplate91.so")
if(NOT library)
  message(FATAL_ERROR "run_consumer_test: libXUNTemplate91.so is not installed")
endif()
get_filename_component(libdir "${library}" DIRECTORY)
foreach(plugin libXUNRec90.so libXUNImaging91.so)
  if(NOT EXISTS "${libdir}/${plugin}")
    message(FATAL_ERROR "run_consumer_test: ${plugin} is not installed beside the library")
  endif()
endforeach()
if(EXISTS "${prefix}/bin/xuntemplate")
  execute_process(COMMAND "${CMAKE_COMMAND}" -E env --unset=LD_LIBRARY_PATH
                          "${prefix}/bin/xuntemplate" register "${SCANNED_TEMPLATE}"
                          -o "${WORK_DIR}/registered.omr"
                  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  string(REGEX MATCH "\n([0-9]+) of ([0-9]+) OMR regions? registered" summary "${output}")
  if(NOT result EQUAL 0 OR NOT summary OR NOT CMAKE_MATCH_1 EQUAL CMAKE_MATCH_2
     OR CMAKE_MATCH_1 EQUAL 0 OR output MATCHES "not registered"
     OR NOT EXISTS "${WORK_DIR}/registered.omr")
    message(FATAL_ERROR "run_consumer_test: the installed xuntemplate did not register "
                        "${SCANNED_TEMPLATE} (${result}):\n${output}${errors}")
  endif()
endif()
