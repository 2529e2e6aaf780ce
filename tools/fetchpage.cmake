qb_tool(NAME fetchpage SOURCES fetchpage.cpp GUI)
