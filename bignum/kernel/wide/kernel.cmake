# limbs_x86.cpp is empty on other machines.
set(kernel_sources words.cpp limbs.cpp limbs_x86.cpp short_x86.cpp product.cpp multiply.cpp quotient.cpp
  divide.cpp montgomery.cpp primes.cpp screen.cpp divisors.cpp text_read.cpp text_write.cpp)
set(kernel_definitions ULM_KERNEL_REUSES_STORAGE)
