qb_tool(NAME initsettings SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/initsettings.cpp)
