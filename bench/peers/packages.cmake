# The peers that come from packages. One that is missing is said, and its row is left out.

# bench_peer(NAME source PACKAGE): what it links is in the variable NAME_LIBRARIES, empty when it is not there.
function(bench_peer name source package)
  if(NOT ${name}_LIBRARIES)
    message(WARNING "bench: no ${name} row, for want of ${package}")
    return()
  endif()
  target_sources(exchanges PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/peers/${source}")
  target_compile_definitions(exchanges PRIVATE KESTREL_BENCH_${name})
  target_include_directories(exchanges SYSTEM PRIVATE ${${name}_INCLUDES})
  target_link_libraries(exchanges PRIVATE ${${name}_LIBRARIES})
endfunction()

find_path(QUEUE_INCLUDES boost/interprocess/ipc/message_queue.hpp)
if(QUEUE_INCLUDES)
  set(QUEUE_LIBRARIES rt)
endif()
bench_peer(QUEUE message_queue.cpp libboost-dev)

find_library(ZEROMQ_LIBRARIES zmq)
bench_peer(ZEROMQ zeromq.cpp libzmq3-dev)

if(PKG_CONFIG_FOUND)
  pkg_check_modules(DBUS_PACKAGE dbus-1)
endif()
set(DBUS_LIBRARIES ${DBUS_PACKAGE_LINK_LIBRARIES})
set(DBUS_INCLUDES ${DBUS_PACKAGE_INCLUDE_DIRS})
bench_peer(DBUS dbus.cpp libdbus-1-dev)

find_library(SNMP_LIBRARIES netsnmp)
bench_peer(SNMP snmp.cpp libsnmp-dev)

find_library(IPP_LIBRARIES cups)
bench_peer(IPP ipp.cpp libcups2-dev)

find_library(GRPC_LIBRARIES grpc++)
find_program(PROTOC protoc)
find_program(GRPC_PLUGIN grpc_cpp_plugin)
if(GRPC_LIBRARIES AND PROTOC AND GRPC_PLUGIN)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/grpc")
  file(MAKE_DIRECTORY "${folder}")
  set(generated printer.pb.cc printer.pb.h printer.grpc.pb.cc printer.grpc.pb.h)
  list(TRANSFORM generated PREPEND "${folder}/")
  add_custom_command(OUTPUT ${generated}
    COMMAND ${PROTOC} --cpp_out=${folder} --grpc_out=${folder} --plugin=protoc-gen-grpc=${GRPC_PLUGIN}
      -I "${CMAKE_CURRENT_SOURCE_DIR}/peers" printer.proto
    DEPENDS peers/printer.proto)
  find_package(Protobuf REQUIRED)
  # Generated code is not held to our warnings.
  add_library(bench_grpc OBJECT ${generated})
  target_include_directories(bench_grpc SYSTEM PUBLIC "${folder}")
  list(APPEND GRPC_LIBRARIES grpc gpr absl_synchronization protobuf::libprotobuf bench_grpc)
else()
  unset(GRPC_LIBRARIES CACHE)
endif()
bench_peer(GRPC grpc.cpp "libgrpc++-dev and protobuf-compiler-grpc")
