# Builds for 64-bit Windows with Debian's mingw-w64 in its flavour of posix threads; programs run under
# Wine. Packages come from the folder ULM_WINDOWS_PACKAGES alone, which scripts/test-windows.sh fills:
# nothing of this system's own /usr/include or its libraries may get in.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)  # the packages ask for it
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

get_filename_component(root ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
set(ULM_WINDOWS_PACKAGES ${root}/build/windows-packages CACHE PATH "Packages built for Windows")
set(CMAKE_CROSSCOMPILING_EMULATOR ${root}/scripts/wine.sh)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${ULM_WINDOWS_PACKAGES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
