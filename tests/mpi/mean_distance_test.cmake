# Variables: see CMakeLists.txt.
cmake_minimum_required(VERSION 3.25)
#
# More ranks than cores, as root in a container, without a remote shell: all is fine here.
set(ENV{OMPI_ALLOW_RUN_AS_ROOT} 1)
set(ENV{OMPI_ALLOW_RUN_AS_ROOT_CONFIRM} 1)
set(ENV{OMPI_MCA_rmaps_base_oversubscribe} 1)
set(ENV{OMPI_MCA_hwloc_base_binding_policy} none)
set(ENV{OMPI_MCA_mpi_yield_when_idle} 1)
set(ENV{OMPI_MCA_plm} isolated)
set(ENV{OMPI_MCA_btl_vader_single_copy_mechanism} none)
set(ENV{PRTE_MCA_rmaps_default_mapping_policy} :oversubscribe)

# estimate(RESULT RANKS ARGUMENTS...): standard output of a run.
function(estimate result ranks)
  execute_process(COMMAND ${MPIEXEC} ${COUNT_FLAG} ${ranks} ${PROGRAM} ${ARGN}
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ranks} ranks, ${ARGN}: ended with ${status}\n${output}${errors}")
  endif()
  if(NOT output MATCHES "mean distance 0\\.66[0-9]+ \\(0x1\\.[0-9a-f]+p-1\\)" OR
     NOT errors MATCHES "${ranks} ranks")
    message(FATAL_ERROR "${ranks} ranks, ${ARGN}:\n${output}${errors}")
  endif()
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

function(expect_same what first second)
  if(NOT first STREQUAL second)
    message(FATAL_ERROR "${what}:\n${first}against\n${second}")
  endif()
endfunction()

# 37 blocks: no number of ranks but 1 divides them.
set(all "")
foreach(layout IN ITEMS mrg32k3a mcg59 mt2203 wh)
  estimate(alone 1 ${layout} 37 2700)
  foreach(ranks IN ITEMS 2 4)
    estimate(together ${ranks} ${layout} 37 2700)
    expect_same("${ranks} ranks, ${layout}" "${alone}" "${together}")
  endforeach()
  string(REGEX MATCH "0x[0-9a-fp.-]+" bits "${alone}")
  if(bits IN_LIST all)
    message(FATAL_ERROR "${layout} has the numbers of another layout: ${bits}")
  endif()
  list(APPEND all ${bits})
endforeach()

# Blocks of one sequence follow each other without gap or overlap: as one block they sum up to the
# same.
estimate(whole 1 mrg32k3a 1 60000)
estimate(cut 4 mrg32k3a 24 2500)
string(REGEX REPLACE "^[^\n]*\n" "" whole "${whole}")
string(REGEX REPLACE "^[^\n]*\n" "" cut "${cut}")
expect_same("24 blocks and one" "${whole}" "${cut}")

# Fewer blocks than ranks, and what is refused.
estimate(one 4 wh 1 50000)
foreach(bad IN ITEMS "mt2203;1025" "wh;274" "mcg59;0" "mcg59;1;1048577" "mt19937" "mcg59;x")
  execute_process(COMMAND ${MPIEXEC} ${COUNT_FLAG} 1 ${PROGRAM} ${bad}
    RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE errors)
  if(status EQUAL 0 OR NOT errors MATCHES "mean_distance: ")
    message(FATAL_ERROR "${bad} is not refused: status ${status}\n${errors}")
  endif()
endforeach()
