# Runs the benchmarks as briefly as possible, with a fresh and an aged heap, and then the report.
set(ENV{KEL_BENCH_DATA} "")
set(ENV{KEL_BENCH_MAX_VALUES} 100000)
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
foreach(heap IN ITEMS fresh aged)
  set(option "")
  if(heap STREQUAL aged)
    set(option --aged)
  endif()
  execute_process(
    COMMAND ${PROGRAMS}/kel_bench ${option} --benchmark_min_time=0.001
      --benchmark_out=${FOLDER}/${heap}-1.json --benchmark_out_format=json
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
execute_process(
  COMMAND ${PROGRAMS}/kel_bench_memory OUTPUT_FILE ${FOLDER}/memory.txt
  COMMAND_ERROR_IS_FATAL ANY)
file(WRITE ${FOLDER}/convert.txt "")
if(TOOL)
  execute_process(
    COMMAND ${SCRIPTS}/convert.sh ${PROGRAMS} 1000000 OUTPUT_FILE ${FOLDER}/convert.txt
    COMMAND_ERROR_IS_FATAL ANY)
endif()
execute_process(
  COMMAND ${PYTHON} -B ${SCRIPTS}/report.py ${FOLDER}
  OUTPUT_VARIABLE report COMMAND_ERROR_IS_FATAL ANY COMMAND_ECHO STDOUT)
message("${report}")
set(words "text_read .*mean" "Drawing an identity" "int in array: KEL"
  "text read, whole .*(met|missed)")
if(EXISTS /sys/devices/system/cpu/cpu0/cache/index0)
  list(APPEND words "level 1 cache")
endif()
foreach(word IN LISTS words)
  if(NOT report MATCHES ${word})
    message(FATAL_ERROR "The report does not mention ${word}")
  endif()
endforeach()
if(TOOL AND report MATCHES "not measured")
  message(FATAL_ERROR "A wanted figure was not measured.")
endif()
