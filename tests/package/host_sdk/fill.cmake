# fill_host_sdk(INSTALLED TARGET) makes the folder TARGET of a host whose headers and some of whose names are
# not ours: the installed declarations of our own under other file names, and the adapters next to this file.
function(fill_host_sdk installed target)
  set(file_names
    core/iface/app.h=app/application.hpp
    core/iface/host_object.h=app/main_object.hpp
    core/iface/iheap.h=app/heap.hpp
    core/iface/iparam.h=app/parameters.hpp
    core/iface/iql_unknown.h=app/unknown.hpp
    core/iface/lang_engine_man.h=app/engine_manager.hpp
    hostsdk/export.h=system/linkage.hpp
    hostsdk/win32/win32.h=system/calls.hpp
    hostsdk/win32/resource_block.h=system/resources.hpp
    hostsdk/odrx/alloc.h=runtime/memory.hpp
    hostsdk/odrx/od_array.h=runtime/array.hpp
    hostsdk/odrx/od_error.h=runtime/errors.hpp
    hostsdk/odrx/od_string.h=runtime/text.hpp
    hostsdk/odrx/rx_object.h=runtime/objects.hpp
    hostsdk/odrx/win32_module.h=runtime/module.hpp
    hostsdk/qlcore/services.h=ql/calls.hpp
    hostsdk/qlcore/strings.h=ql/strings.hpp
    hostsdk/qlcore/variant.h=ql/values.hpp
    hostsdk/hostcmd/hostcmd.h=engines/manager.hpp)
  set(names OdRxWin32Module=RxModuleObject kQLWideString=QLTAG_WIDE)

  file(GLOB_RECURSE headers RELATIVE ${installed}/include ${installed}/include/*.h)
  foreach(header ${headers})
    if(NOT file_names MATCHES "(^|;)${header}=([^;]+)")
      message(FATAL_ERROR "${header} has no other name in fill.cmake")
    endif()
    set(renamed ${CMAKE_MATCH_2})
    file(READ ${installed}/include/${header} text)
    foreach(pair ${file_names} ${names})
      string(REPLACE "=" ";" pair ${pair})
      list(GET pair 0 old)
      list(GET pair 1 new)
      string(REPLACE "${old}" "${new}" text "${text}")
    endforeach()
    file(WRITE ${target}/include/${renamed} "${text}")
  endforeach()
  file(COPY ${installed}/lib ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/host_adapter DESTINATION ${target})
endfunction()
