# Runs the generator into a fresh directory and compares the result with the committed pages:
#   cmake -DGENERATOR=... -DREFERENCE=docs/reference -DWORK=scratch_dir -P check_current.cmake
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${GENERATOR} ${REFERENCE}/notes.txt ${WORK} RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "make_reference failed (${status})")
endif()

set(fix "run `cmake --build --preset default --target reference` and commit docs/reference/")
file(GLOB written RELATIVE ${WORK} ${WORK}/*.html)
file(GLOB committed RELATIVE ${REFERENCE} ${REFERENCE}/*.html)
list(SORT written)
list(SORT committed)
if(NOT written STREQUAL committed)
  message(FATAL_ERROR "docs/reference/ holds [${committed}], the generator writes [${written}]: ${fix}")
endif()
foreach(page ${written})
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK}/${page} ${REFERENCE}/${page}
                  RESULT_VARIABLE differs)
  if(differs)
    message(FATAL_ERROR "docs/reference/${page} is out of date: ${fix}")
  endif()
endforeach()
