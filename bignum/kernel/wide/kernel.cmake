# The source for x86-64 is empty on other machines.
set(kernel_sources words.cpp limbs.cpp limbs_x86.cpp product.cpp multiply.cpp quotient.cpp
  divide.cpp)
