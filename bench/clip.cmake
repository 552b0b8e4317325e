# The clipper next to its peers, each of which is measured if it is installed.

add_executable(clip_bench clip_bench.cpp clip_in_place_bench.cpp)
ulm_common(clip_bench)
target_link_libraries(clip_bench PRIVATE Ulmira::clip benchmark::benchmark ${CMAKE_DL_LIBS})

foreach(peer agg boost cgal clipper)
  string(TOUPPER ${peer} macro)
  ulm_use_peer(clip_bench ${peer} ULM_PEER_${macro})
  if(TARGET Peer::${peer})
    target_sources(clip_bench PRIVATE clip_peer_${peer}.cpp)
  endif()
endforeach()

# Each width of Bullet is a separate module, which is opened at run time.
foreach(width "" "-float64")
  if(NOT TARGET Peer::bullet${width})
    continue()
  endif()
  add_library(clip_peer_bullet${width} MODULE clip_peer_bullet.cpp)
  ulm_common(clip_peer_bullet${width})
  set_target_properties(clip_peer_bullet${width} PROPERTIES PREFIX "")
  target_link_libraries(clip_peer_bullet${width} PRIVATE Peer::bullet${width})
  if(width)
    target_compile_definitions(clip_peer_bullet${width} PRIVATE BT_USE_DOUBLE_PRECISION)
  endif()
  add_dependencies(clip_bench clip_peer_bullet${width})
  string(MAKE_C_IDENTIFIER "ULM_PEER_BULLET${width}" definition)
  target_compile_definitions(clip_bench PRIVATE
    ${definition}="$<TARGET_FILE:clip_peer_bullet${width}>")
endforeach()

add_test(NAME clip_bench.smoke COMMAND clip_bench --benchmark_min_time=0.0001)
set_tests_properties(clip_bench.smoke PROPERTIES LABELS "smoke;peer" TIMEOUT 300)
