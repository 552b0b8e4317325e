set(kernel_sources words.cpp multiply.cpp divide.cpp methods.cpp)
