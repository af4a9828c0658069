# Runs the benchmarks as briefly as possible, then the report.
set(ENV{KEL_BENCH_DATA} "")
set(ENV{KEL_BENCH_MAX_VALUES} 10000)
execute_process(
  COMMAND ${BENCH} --benchmark_min_time=0.001
    --benchmark_out=${FOLDER}/results.json --benchmark_out_format=json
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${MEMORY} OUTPUT_FILE ${FOLDER}/memory.txt
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${PYTHON} -B ${REPORT} ${FOLDER}/results.json ${FOLDER}/memory.txt
  OUTPUT_VARIABLE report COMMAND_ERROR_IS_FATAL ANY COMMAND_ECHO STDOUT)
foreach(word IN ITEMS text_read text_write binary_write binary_read copy lookup "GEOMETRIC MEAN"
        "Drawing an identity" "int in array, KEL")
  if(NOT report MATCHES ${word})
    message(FATAL_ERROR "The report does not mention ${word}:\n${report}")
  endif()
endforeach()
