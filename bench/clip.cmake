# The clipper beside its peers, each of which takes part where it is installed.

add_executable(clip_bench clip_bench.cpp)
ulm_common(clip_bench)
target_link_libraries(clip_bench PRIVATE Ulmira::clip benchmark::benchmark ${CMAKE_DL_LIBS})

# ulm_clip_peer(AGG HEADER agg2/agg_clip_liang_barsky.h [LIBRARY agg] SOURCE clip_peer_agg.cpp)
function(ulm_clip_peer name)
  cmake_parse_arguments(PEER "" "HEADER;LIBRARY;SOURCE" "MORE_LIBRARIES" ${ARGN})
  find_path(ULM_PEER_${name}_INCLUDE ${PEER_HEADER})
  set(found ${ULM_PEER_${name}_INCLUDE})
  foreach(library ${PEER_LIBRARY} ${PEER_MORE_LIBRARIES})
    find_library(ULM_PEER_${library}_LIBRARY ${library})
    if(NOT ULM_PEER_${library}_LIBRARY)
      set(found FALSE)
    endif()
    list(APPEND libraries ${ULM_PEER_${library}_LIBRARY})
  endforeach()
  if(NOT found)
    message(STATUS "clip_bench: ${name} is not installed and left out")
    return()
  endif()
  target_sources(clip_bench PRIVATE ${PEER_SOURCE})
  target_compile_definitions(clip_bench PRIVATE ULM_PEER_${name})
  target_link_libraries(clip_bench PRIVATE ${libraries})
endfunction()

ulm_clip_peer(AGG HEADER agg2/agg_clip_liang_barsky.h LIBRARY agg SOURCE clip_peer_agg.cpp)
ulm_clip_peer(BOOST HEADER boost/geometry.hpp SOURCE clip_peer_boost.cpp)
ulm_clip_peer(CGAL HEADER CGAL/Simple_cartesian.h LIBRARY gmp MORE_LIBRARIES mpfr
  SOURCE clip_peer_cgal.cpp)
ulm_clip_peer(CLIPPER HEADER polyclipping/clipper.hpp LIBRARY polyclipping
  SOURCE clip_peer_clipper.cpp)

# Bullet's two widths share their symbols, so each is a module of its own, opened at run time.
find_path(ULM_PEER_BULLET_INCLUDE bullet/btBulletCollisionCommon.h)
foreach(width "" "-float64")
  find_library(ULM_PEER_BULLET${width}_COLLISION BulletCollision${width})
  find_library(ULM_PEER_BULLET${width}_MATH LinearMath${width})
  if(NOT ULM_PEER_BULLET_INCLUDE OR NOT ULM_PEER_BULLET${width}_COLLISION)
    message(STATUS "clip_bench: Bullet${width} is not installed and left out")
    continue()
  endif()
  add_library(clip_peer_bullet${width} MODULE clip_peer_bullet.cpp)
  ulm_common(clip_peer_bullet${width})
  set_target_properties(clip_peer_bullet${width} PROPERTIES PREFIX "")
  target_include_directories(clip_peer_bullet${width} SYSTEM PRIVATE
    ${ULM_PEER_BULLET_INCLUDE}/bullet)
  target_link_libraries(clip_peer_bullet${width} PRIVATE
    ${ULM_PEER_BULLET${width}_COLLISION} ${ULM_PEER_BULLET${width}_MATH})
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
