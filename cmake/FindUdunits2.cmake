# UDUNITS-2 as the imported target udunits2::udunits2. Part of the installed package as well.
find_path(UDUNITS2_INCLUDE_DIR udunits2.h PATH_SUFFIXES udunits2)
find_library(UDUNITS2_LIBRARY NAMES udunits2)
mark_as_advanced(UDUNITS2_INCLUDE_DIR UDUNITS2_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Udunits2 REQUIRED_VARS UDUNITS2_LIBRARY UDUNITS2_INCLUDE_DIR)

if(Udunits2_FOUND AND NOT TARGET udunits2::udunits2)
    add_library(udunits2::udunits2 UNKNOWN IMPORTED)
    set_target_properties(udunits2::udunits2 PROPERTIES
        IMPORTED_LOCATION "${UDUNITS2_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${UDUNITS2_INCLUDE_DIR}")
endif()
