# Builds for another processor's Linux with Debian's cross compilers; programs run under qemu. ULM_CROSS is
# aarch64, i686 or s390x. Packages come from the folder ULM_CROSS_PACKAGES alone, which scripts/test-cross.sh
# fills.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ULM_CROSS ULM_CROSS_PACKAGES)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${ULM_CROSS})
set(CMAKE_CXX_COMPILER ${ULM_CROSS}-linux-gnu-g++)
set(CMAKE_C_COMPILER ${ULM_CROSS}-linux-gnu-gcc)
set(qemu_name ${ULM_CROSS})
if(ULM_CROSS STREQUAL "i686")
  set(qemu_name i386)
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-${qemu_name};-L;/usr/${ULM_CROSS}-linux-gnu")

set(CMAKE_FIND_ROOT_PATH /usr/${ULM_CROSS}-linux-gnu ${ULM_CROSS_PACKAGES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
