# 32-bit ARM hard float, against the tree that make_tree.sh makes; what is built runs in the emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/arm-tree)
cmake_path(NORMAL_PATH CMAKE_SYSROOT)
set(CMAKE_CXX_COMPILER_TARGET arm-linux-gnueabihf)
# The platform's, but for the calling convention: Debian passes floating-point numbers in registers.
set(CMAKE_CXX_FLAGS_INIT "-march=armv7-a -mfpu=neon -mthumb")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/emulate.sh)

# Compilers and generators are the build machine's, all else is the tree's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(JRE_HOME ${CMAKE_SYSROOT}/usr/lib/jvm/java-17-openjdk-armhf)
set(JAVA ${CMAKE_CROSSCOMPILING_EMULATOR} ${JRE_HOME}/bin/java)
set(JVM_LIBRARY ${JRE_HOME}/lib/server/libjvm.so)
# By its full path: see make_tree.sh on what the emulator hides from the loader. From build/arm, for the
# linker's options are split at the commas of a path.
set(CMAKE_BUILD_RPATH $ORIGIN/../arm-tree/usr/lib/jvm/java-17-openjdk-armhf/lib/server)
