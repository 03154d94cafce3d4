// The names of record types and attributes.
#pragma once

// For lists of names: records of any name; for lists of attributes: all, all with standard names,
// all with names of the node's own.
inline constexpr char kDSRecordsAll[] = "dsRecordsAll";
inline constexpr char kDSAttributesAll[] = "dsAttributesAll";
inline constexpr char kDSAttributesStandardAll[] = "dsAttributesStandardAll";
inline constexpr char kDSAttributesNativeAll[] = "dsAttributesNativeAll";

inline constexpr char kDSStdRecordTypePrefix[] = "dsRecTypeStandard:";
inline constexpr char kDSStdRecordTypeUsers[] = "dsRecTypeStandard:Users";
inline constexpr char kDSStdRecordTypeGroups[] = "dsRecTypeStandard:Groups";
inline constexpr char kDSStdRecordTypeComputers[] = "dsRecTypeStandard:Computers";

inline constexpr char kDSStdAttrTypePrefix[] = "dsAttrTypeStandard:";
inline constexpr char kDSNativeAttrTypePrefix[] = "dsAttrTypeNative:";
inline constexpr char kDSNAttrRecordName[] = "dsAttrTypeStandard:RecordName";
inline constexpr char kDSNAttrRecordType[] = "dsAttrTypeStandard:RecordType";
inline constexpr char kDSNAttrMetaNodeLocation[] = "dsAttrTypeStandard:AppleMetaNodeLocation";
inline constexpr char kDS1AttrUniqueID[] = "dsAttrTypeStandard:UniqueID";
inline constexpr char kDS1AttrPrimaryGroupID[] = "dsAttrTypeStandard:PrimaryGroupID";
inline constexpr char kDS1AttrNFSHomeDirectory[] = "dsAttrTypeStandard:NFSHomeDirectory";
inline constexpr char kDS1AttrDistinguishedName[] = "dsAttrTypeStandard:RealName";
inline constexpr char kDS1AttrUserShell[] = "dsAttrTypeStandard:UserShell";
inline constexpr char kDS1AttrGeneratedUID[] = "dsAttrTypeStandard:GeneratedUID";
inline constexpr char kDSNAttrGroupMembership[] = "dsAttrTypeStandard:GroupMembership";
