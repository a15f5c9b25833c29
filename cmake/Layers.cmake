# SPDX-License-Identifier: GPL-3.0-or-later
# The layers, lowest first. A module links and includes only modules of lower layers; the
# modules of one layer know nothing of each other. Each module is a folder, named from the
# source root; a folder inside another module's folder is a module of its own when listed.
# CONTRIBUTING.md explains the order; the `layers` test holds the build to it.
set(TESSORIN_LAYERS
  "base: src/fileio src/log"
  "settings: src/settings"
  "platform stand-ins: src/imageio src/media src/geo"
  "photo library: src/library"
  "locations: src/location"
  "metadata: src/metadata"
  "assets: src/assets"
  "features: src/editing src/albums src/resources src/credits"
  "features over editing: src/editing/video src/iptc src/sharing"
  "faces: app cli")

# Test-only targets, which may link anything.
set(TESSORIN_LAYER_EXEMPT testsupport)

# Writes FILE with one line per program target of the project (named tessorin*):
# "TARGET|FOLDER|LINKED,LINKED,...", FOLDER relative to the source root and LINKED the target's
# direct links among those targets, private ones included.
function(tessorin_write_link_graph file)
  set(dirs ${CMAKE_SOURCE_DIR})
  set(targets)
  while(dirs)
    list(POP_FRONT dirs dir)
    get_property(subdirs DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
    list(APPEND dirs ${subdirs})
    get_property(own DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(t IN LISTS own)
      if(t MATCHES "^tessorin")
        list(APPEND targets ${t})
      endif()
    endforeach()
  endwhile()
  set(text "")
  foreach(t IN LISTS targets)
    get_target_property(folder ${t} SOURCE_DIR)
    file(RELATIVE_PATH folder ${CMAKE_SOURCE_DIR} ${folder})
    get_target_property(type ${t} TYPE)
    set(links)
    if(NOT type STREQUAL "INTERFACE_LIBRARY")
      get_target_property(links ${t} LINK_LIBRARIES)
    endif()
    get_target_property(interface ${t} INTERFACE_LINK_LIBRARIES)
    set(linked)
    foreach(l IN LISTS links interface)
      # A static library's private links reach its users as $<LINK_ONLY:name>.
      string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" l "${l}")
      if(l IN_LIST targets AND NOT l STREQUAL t)
        list(APPEND linked ${l})
      endif()
    endforeach()
    list(REMOVE_DUPLICATES linked)
    list(JOIN linked "," linked)
    string(APPEND text "${t}|${folder}|${linked}\n")
  endforeach()
  file(WRITE ${file} "${text}")
endfunction()
