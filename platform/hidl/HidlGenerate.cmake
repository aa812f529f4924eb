# hidl_generate(<headers-var> OUTPUT_DIR <dir> ROOTS <package:dir>... PACKAGES <package@version>...)
# Runs hidl-gen at build time; <headers-var> gets the headers of the interfaces and their types.
# List them among the sources of one target and give that target OUTPUT_DIR as SYSTEM PUBLIC include
# directory; it has to link hidlbase, which brings android.hidl.base and android.hidl.manager.
# A changed .hal under any root generates anew; a new .hal is picked up by the next configure run.
find_program(HIDL_GEN hidl-gen REQUIRED)

# The folder of a package's .hal files, by the root that its name starts with.
function(hidl_package_dir out_var package version)
    foreach(root IN LISTS ARGN)
        string(REGEX MATCH "^([^:]+):(.+)$" matched "${root}")
        set(prefix "${CMAKE_MATCH_1}")
        set(dir "${CMAKE_MATCH_2}")
        string(FIND "${package}." "${prefix}." at)
        if(at EQUAL 0)
            string(LENGTH "${prefix}" length)
            string(SUBSTRING "${package}" ${length} -1 rest)
            string(REPLACE . / rest "${rest}")
            set(${out_var} "${dir}${rest}/${version}" PARENT_SCOPE)
            return()
        endif()
    endforeach()
    message(FATAL_ERROR "no root for ${package}@${version}")
endfunction()

function(hidl_generate headers_var)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" OUTPUT_DIR "ROOTS;PACKAGES")
    get_filename_component(host_dir "${CMAKE_CURRENT_FUNCTION_LIST_DIR}" DIRECTORY)
    list(APPEND ARG_ROOTS "android.hidl:${host_dir}/interfaces/hidl/android/hidl")

    set(root_options)
    set(sources)
    foreach(root IN LISTS ARG_ROOTS)
        list(APPEND root_options -r ${root})
        string(REGEX REPLACE "^[^:]+:" "" dir "${root}")
        file(GLOB_RECURSE found CONFIGURE_DEPENDS "${dir}/*.hal")
        list(APPEND sources ${found})
    endforeach()

    set(headers)
    foreach(fq_package IN LISTS ARG_PACKAGES)
        string(REGEX MATCH "^(.+)@(.+)$" matched "${fq_package}")
        set(package "${CMAKE_MATCH_1}")
        set(version "${CMAKE_MATCH_2}")
        hidl_package_dir(dir ${package} ${version} ${ARG_ROOTS})
        file(GLOB files CONFIGURE_DEPENDS "${dir}/*.hal")
        if(NOT files)
            message(FATAL_ERROR "no .hal files for ${fq_package} in ${dir}")
        endif()
        string(REPLACE . / path "${package}")
        foreach(file IN LISTS files)
            get_filename_component(name "${file}" NAME_WE)
            list(APPEND headers "${ARG_OUTPUT_DIR}/${path}/${version}/${name}.h")
        endforeach()
    endforeach()

    add_custom_command(
        OUTPUT ${headers}
        COMMAND ${HIDL_GEN} -p . -R -o "${ARG_OUTPUT_DIR}" -L c++-headers ${root_options}
                ${ARG_PACKAGES}
        # The lists of an enum's values are constants in a header: without inline, clang defines each
        # in every object that includes it. Later compilers write it themselves.
        COMMAND sed -i "s/^template<> constexpr std::array</template<> inline constexpr std::array</"
                ${headers}
        DEPENDS ${sources}
        COMMENT "Generating HIDL headers in ${ARG_OUTPUT_DIR}"
        VERBATIM)
    set(${headers_var} ${headers} PARENT_SCOPE)
endfunction()
