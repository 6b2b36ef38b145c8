#pragma once

#include <cstdint>

/// The properties of a family that are read and written by number. The values are fixed; 13 and 14
/// stand for nothing. A family takes 0 to 11 (9 and 10 for reading only), an entry of a table of
/// contents takes the ones that its attributes hold.
enum FamilyPropType : int32_t {
    FamilyPropDisplayName = 0,
    FamilyPropDescription = 1,
    FamilyPropStandard = 2,
    FamilyPropStandardsOrg = 3,
    FamilyPropManufacturer = 4,
    FamilyPropStandardRevision = 5,
    FamilyPropFamilyRevision = 6,
    FamilyPropFolderName = 7,
    FamilyPropRevisionID = 8,
    FamilyPropInternalName = 9,
    FamilyPropLibInterName = 10,
    FamilyPropThumbnailPath = 11,
    FamilyPropSourceMoniker = 12,
    FamilyPropSrcActive = 15,
    FamilyPropLastModifiedTime = 16,
};
