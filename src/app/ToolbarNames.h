#pragma once

#include <array>
#include <string_view>
#include <utility>

// The fifteen toolbar entries from the top: object name, the name shown in its picture
// (the entry's accessible name), the picture keys at rest and under the mouse, and the
// file in the Images folder that replaces the pictures (empty when it cannot be replaced).
struct ToolbarEntry {
    std::string_view objectName;
    std::string_view shownName;
    std::string_view restKey;
    std::string_view hoverKey;
    bool replaceableByFile;
};

inline constexpr std::array<ToolbarEntry, 15> toolbarEntries{{
    {"ImgPersonal", "Personal Details", "Personal1", "Personal2", false},
    {"ImgSettings", "Settings", "Settings1", "Settings2", false},
    {"ImgLogin", "User Accounts", "Login1", "Login2", false},
    {"ImgDocType", "Document Type", "DocType1", "DocType2", true},
    {"ImgDocCat", "Document Category", "DocCat1", "DocCat2", true},
    {"ImgDocSubCat", "Sub-Category", "DocSubCat1", "DocSubCat2", true},
    {"ImgDocChildCat", "Child Category", "DocChildCat1", "DocChildCat2", true},
    {"ImgFile", "File Register", "File1", "File2", false},
    {"ImgIndexDoc", "Index Document", "IndexDoc1", "IndexDoc2", false},
    {"ImgSearchDoc", "Search Document", "SearchDoc1", "SearchDoc2", false},
    {"ImgImpContact", "Important Contacts", "ImpContacts1", "ImpContacts2", false},
    {"ImgInternetRef", "Internet References", "InternetRef1", "InternetRef2", false},
    {"ImgDataBackup", "Data Backup", "Backup1", "Backup2", false},
    {"ImgHelp", "Help", "Help1", "Help2", false},
    {"ImgAbout", "About", "About1", "About2", false},
}};

// The separators and the entry after which each stands.
inline constexpr std::array<std::pair<std::string_view, std::string_view>, 4> toolbarSeparators{{
    {"Line6", "ImgLogin"},
    {"Line1", "ImgFile"},
    {"Line2", "ImgSearchDoc"},
    {"Line3", "ImgInternetRef"},
}};
