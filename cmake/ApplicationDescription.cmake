# Reads packaging/application.json, the one place where the application is named and numbered: its member "version" as
# BRINDLE_APPLICATION_VERSION, and the others alike. A change of the file configures the build anew.
set(description ${CMAKE_CURRENT_LIST_DIR}/../packaging/application.json)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${description})
file(READ ${description} description)
foreach(member identifier displayName name executable version build date description)
    string(TOUPPER ${member} upper)
    string(JSON BRINDLE_APPLICATION_${upper} GET "${description}" ${member})
endforeach()
