# Helper functions for guest programs and guest tests.
#
# A guest program is linked one of two ways:
#   dynamic (default): a position-independent executable that needs libc.so, as users build them,
#           with the front-door archive libkvc_front.a for the ISO C names;
#   STATIC: an ET_EXEC linked with every object of the library and of the libdl stand-in
#           (white-box tests can call the library's internal functions).
# kvrun calls the ELF entry point as main(argc, argv), so programs are linked with -e main.

function(kv_guest_program name)
  cmake_parse_arguments(P "STATIC" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${P_SOURCES})
  target_include_directories(${name} PRIVATE ${KV_SOURCE_DIR}/libc/include)
  if(P_STATIC)
    target_link_options(${name} PRIVATE -static -Wl,-e,main)
    target_link_libraries(${name} PRIVATE ${P_LIBRARIES}
      -Wl,--whole-archive $<TARGET_FILE:c_static> $<TARGET_FILE:dl_static> -Wl,--no-whole-archive)
    add_dependencies(${name} c_static dl_static)
    target_include_directories(${name} PRIVATE ${KV_SOURCE_DIR}/libc)
  else()
    target_link_options(${name} PRIVATE -Wl,-pie -Wl,-e,main)
    target_link_libraries(${name} PRIVATE ${P_LIBRARIES} kvc_front c dl)
  endif()
endfunction()

# kv_guest_test(name SOURCES ... [STATIC] [KVRUN_ARGS ...] [ARGS ...] [WILL_FAIL] [PASS_REGULAR_EXPRESSION re])
# builds a guest program with the test framework and registers it with ctest (label guest).
function(kv_guest_test name)
  cmake_parse_arguments(T "STATIC;WILL_FAIL" "PASS_REGULAR_EXPRESSION" "SOURCES;LIBRARIES;KVRUN_ARGS;ARGS" ${ARGN})
  set(mode)
  if(T_STATIC)
    set(mode STATIC)
  endif()
  kv_guest_program(${name} ${mode} SOURCES ${T_SOURCES} LIBRARIES kvtest ${T_LIBRARIES})
  set(extra)
  if(T_WILL_FAIL)
    list(APPEND extra WILL_FAIL)
  endif()
  if(T_PASS_REGULAR_EXPRESSION)
    list(APPEND extra PASS_REGULAR_EXPRESSION "${T_PASS_REGULAR_EXPRESSION}")
  endif()
  kv_guest_run(${name} ${name} KVRUN_ARGS ${T_KVRUN_ARGS} ARGS ${T_ARGS} ${extra})
endfunction()

# kv_guest_run(test program [KVRUN_ARGS ...] [ARGS ...] [WILL_FAIL] [PASS_REGULAR_EXPRESSION re])
# registers one more run of an existing guest program, e.g. with other kvrun options.
function(kv_guest_run test program)
  cmake_parse_arguments(T "WILL_FAIL" "PASS_REGULAR_EXPRESSION" "KVRUN_ARGS;ARGS" ${ARGN})
  add_test(NAME guest.${test}
    COMMAND ${KVRUN} -L ${KV_LIB_DIR} ${T_KVRUN_ARGS} $<TARGET_FILE:${program}> ${T_ARGS}
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  set_tests_properties(guest.${test} PROPERTIES LABELS guest TIMEOUT 120)
  if(T_WILL_FAIL)
    set_tests_properties(guest.${test} PROPERTIES WILL_FAIL ON)
  endif()
  if(T_PASS_REGULAR_EXPRESSION)
    set_tests_properties(guest.${test} PROPERTIES PASS_REGULAR_EXPRESSION "${T_PASS_REGULAR_EXPRESSION}")
  endif()
endfunction()
