# Libraries of others that tests, benchmarks and fuzz targets compare with: the one file that looks for
# them. None is needed. What is installed becomes a target Peer::name, to be tested with if(TARGET ...).

# ulm_find_peer(gmp HEADER gmp.h LIBRARIES gmp) makes Peer::gmp. SUFFIXES are folders of an include
# folder where the header is found, and which users of the peer search as well.
function(ulm_find_peer name)
  cmake_parse_arguments(PEER "" "HEADER" "LIBRARIES;SUFFIXES" ${ARGN})
  find_path(ULM_PEER_${name}_INCLUDE ${PEER_HEADER} PATH_SUFFIXES ${PEER_SUFFIXES})
  set(missing)
  set(libraries)
  if(NOT ULM_PEER_${name}_INCLUDE)
    list(APPEND missing ${PEER_HEADER})
  endif()
  foreach(library ${PEER_LIBRARIES})
    find_library(ULM_PEER_LIBRARY_${library} ${library})
    if(ULM_PEER_LIBRARY_${library})
      list(APPEND libraries ${ULM_PEER_LIBRARY_${library}})
    else()
      list(APPEND missing "library ${library}")
    endif()
  endforeach()
  if(missing)
    list(JOIN missing ", " missing)
    message(STATUS "peer ${name} is left out: no ${missing}")
    return()
  endif()
  add_library(Peer::${name} INTERFACE IMPORTED GLOBAL)
  target_link_libraries(Peer::${name} INTERFACE ${libraries})
  target_include_directories(Peer::${name} SYSTEM INTERFACE ${ULM_PEER_${name}_INCLUDE})
endfunction()

# ulm_use_peer(bignum_bench gmp ULM_BENCH_GMP) links a peer where it is there, and defines the macro.
function(ulm_use_peer target name macro)
  if(TARGET Peer::${name})
    target_link_libraries(${target} PRIVATE Peer::${name})
    target_compile_definitions(${target} PRIVATE ${macro})
  endif()
endfunction()

# Numbers and digests.
ulm_find_peer(gmp HEADER gmp.h LIBRARIES gmp)
ulm_find_peer(openssl HEADER openssl/bn.h LIBRARIES crypto)
ulm_find_peer(tommath HEADER tommath.h LIBRARIES tommath)

# Fonts.
ulm_find_peer(freetype HEADER ft2build.h LIBRARIES freetype SUFFIXES freetype2)
ulm_find_peer(harfbuzz HEADER hb.h LIBRARIES harfbuzz SUFFIXES harfbuzz)
ulm_find_peer(harfbuzz_subset HEADER hb-subset.h LIBRARIES harfbuzz-subset harfbuzz SUFFIXES harfbuzz)
ulm_find_peer(stb HEADER stb/stb_truetype.h)
# fontTools may be known to the system's interpreter alone. ULM_FONTTOOLS_PYTHON runs it, or is empty.
find_package(Python3 COMPONENTS Interpreter)
set(ULM_FONTTOOLS_PYTHON)
foreach(python "${Python3_EXECUTABLE}" /usr/bin/python3)
  execute_process(COMMAND "${python}" -c "import fontTools" RESULT_VARIABLE lacking
    OUTPUT_QUIET ERROR_QUIET)
  if(NOT lacking AND NOT ULM_FONTTOOLS_PYTHON)
    set(ULM_FONTTOOLS_PYTHON "${python}")
  endif()
endforeach()
if(NOT ULM_FONTTOOLS_PYTHON)
  message(STATUS "peer fontTools is left out: no Python that has it")
endif()

# Clippers. Bullet's two widths have the same symbols, so no program links both.
ulm_find_peer(agg HEADER agg2/agg_clip_liang_barsky.h LIBRARIES agg)
ulm_find_peer(boost HEADER boost/geometry.hpp)
ulm_find_peer(cgal HEADER CGAL/Simple_cartesian.h LIBRARIES gmp mpfr)
ulm_find_peer(clipper HEADER polyclipping/clipper.hpp LIBRARIES polyclipping)
ulm_find_peer(bullet HEADER btBulletCollisionCommon.h LIBRARIES BulletCollision LinearMath
  SUFFIXES bullet)
ulm_find_peer(bullet-float64 HEADER btBulletCollisionCommon.h
  LIBRARIES BulletCollision-float64 LinearMath-float64 SUFFIXES bullet)
