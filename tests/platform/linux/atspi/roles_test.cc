#include "platform/linux/atspi/roles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace {

// AT-SPI's roles by number, up to that of notifications.
constexpr std::string_view kStandard =
    "invalid,accelerator label,alert,animation,arrow,calendar,canvas,check box,check menu item,"
    "color chooser,column header,combo box,date editor,desktop icon,desktop frame,dial,dialog,"
    "directory pane,drawing area,file chooser,filler,focus traversable,font chooser,frame,glass pane,"
    "html container,icon,image,internal frame,label,layered pane,list,list item,menu,menu bar,menu item,"
    "option pane,page tab,page tab list,panel,password text,popup menu,progress bar,button,radio button,"
    "radio menu item,root pane,row header,scroll bar,scroll pane,separator,slider,spin button,split pane,"
    "status bar,table,table cell,table column header,table row header,tearoff menu item,terminal,text,"
    "toggle button,tool bar,tool tip,tree,tree table,unknown,viewport,window,extended,header,footer,"
    "paragraph,ruler,application,autocomplete,editbar,embedded,entry,chart,caption,document frame,"
    "heading,page,section,redundant object,form,link,input method window,table row,tree item,"
    "document spreadsheet,document presentation,document text,document web,document email,comment,"
    "list box,grouping,image map,notification";
constexpr HLRawRole kStatic{116};

// The roles and subroles of macOS that the table may use.
constexpr std::string_view kRoles =
    "AXApplication,AXButton,AXCell,AXCheckBox,AXComboBox,AXGroup,AXHeading,AXHelpTag,AXImage,"
    "AXIncrementor,AXLink,AXList,AXMenu,AXMenuBar,AXMenuItem,AXOutline,AXRadioButton,AXRow,"
    "AXProgressIndicator,AXScrollArea,AXScrollBar,AXSlider,AXSplitGroup,AXSplitter,AXStaticText,"
    "AXTabGroup,AXTable,AXTextArea,AXTextField,AXToolbar,AXUnknown,AXWindow";
constexpr std::string_view kSubroles =
    ",AXApplicationAlert,AXDialog,AXOutlineRow,AXSecureTextField,AXStandardWindow,AXTabButton,AXToggle";

std::vector<std::string_view> partsOf(std::string_view list) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t comma = list.find(',');
    parts.push_back(list.substr(0, comma));
    if (comma == std::string_view::npos) return parts;
    list.remove_prefix(comma + 1);
  }
}

TEST(Roles, HaveTheNamesOfTheStandard) {
  const std::vector<std::string_view> standard = partsOf(kStandard);
  for (const HLRole& role : HLRoles) {
    EXPECT_EQ(role.name, role.number == kStatic ? "static" : standard.at(static_cast<std::size_t>(role.number)));
  }
}

TEST(Roles, MapToMacOSRoles) {
  for (const HLRole& role : HLRoles) {
    EXPECT_THAT(partsOf(kRoles), testing::Contains(role.role)) << role.name;
    EXPECT_THAT(partsOf(kSubroles), testing::Contains(role.subrole)) << role.name;
  }
}

TEST(Roles, AreUnknownWithoutARow) { EXPECT_EQ(HLRoleOf(HLRawRole{1}).role, "AXUnknown"); }

}  // namespace
