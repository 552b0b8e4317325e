# The steps of the walk by the plain kernel, for programs that link the wide one: a library of its own,
# so that the equal names do not meet.
if(NOT TARGET bignum_reference)
  add_library(bignum_reference SHARED
    ${CMAKE_CURRENT_LIST_DIR}/kernel_reference.cpp ${CMAKE_CURRENT_LIST_DIR}/walk_steps.cpp)
  ulm_common(bignum_reference)
  target_link_libraries(bignum_reference PRIVATE Ulmira::bignum_plain)
endif()
