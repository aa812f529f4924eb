# java_classes(NAME RELEASE N SOURCES FILE... [NEEDS NAME...] [JARS FILE...] [OPTIONS OPTION...]
#              [THEN COMMAND ...] [WITH FILE...])
#
# Java classes in java/NAME of the build tree, and the target kalvorn_NAME_java for them. They are compiled
# beside those of the names that they need, and of the jars; further commands may follow, for files that go
# along. java/NAME.stamp tells when that was.
function(java_classes name)
    cmake_parse_arguments(PARSE_ARGV 1 JAVA "" "RELEASE" "SOURCES;NEEDS;JARS;OPTIONS;THEN;WITH")
    set(folder ${CMAKE_BINARY_DIR}/java)
    set(class_path ${JAVA_JARS})
    set(stamps)
    foreach(needed IN LISTS JAVA_NEEDS)
        list(APPEND class_path ${folder}/${needed})
        list(APPEND stamps ${folder}/${needed}.stamp)
    endforeach()
    list(JOIN class_path ":" class_path)
    if(class_path)
        set(class_path -cp ${class_path})
    endif()
    add_custom_command(
        OUTPUT ${folder}/${name}.stamp
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${folder}/${name}
        COMMAND ${JAVAC} --release ${JAVA_RELEASE} ${JAVA_OPTIONS} ${class_path} -d ${folder}/${name}
            ${JAVA_SOURCES}
        ${JAVA_THEN}
        COMMAND ${CMAKE_COMMAND} -E touch ${folder}/${name}.stamp
        DEPENDS ${JAVA_SOURCES} ${JAVA_WITH} ${stamps}
        VERBATIM)
    add_custom_target(kalvorn_${name}_java ALL DEPENDS ${folder}/${name}.stamp)
    foreach(needed IN LISTS JAVA_NEEDS)
        add_dependencies(kalvorn_${name}_java kalvorn_${needed}_java)
    endforeach()
endfunction()
