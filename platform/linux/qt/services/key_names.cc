#include "platform/linux/qt/services/key_names.h"

#include <algorithm>
#include <iterator>

namespace {

struct KeyName {
  std::uint32_t code;
  const char* name;
};

// The keys of Apple's ANSI keyboard.
constexpr KeyName kKeyNames[] = {
    {0, "a"},        {1, "s"},           {2, "d"},
    {3, "f"},        {4, "h"},           {5, "g"},
    {6, "z"},        {7, "x"},           {8, "c"},
    {9, "v"},        {11, "b"},          {12, "q"},
    {13, "w"},       {14, "e"},          {15, "r"},
    {16, "y"},       {17, "t"},          {18, "1"},
    {19, "2"},       {20, "3"},          {21, "4"},
    {22, "6"},       {23, "5"},          {24, "equal"},
    {25, "9"},       {26, "7"},          {27, "minus"},
    {28, "8"},       {29, "0"},          {30, "bracketright"},
    {31, "o"},       {32, "u"},          {33, "bracketleft"},
    {34, "i"},       {35, "p"},          {36, "Return"},
    {37, "l"},       {38, "j"},          {39, "apostrophe"},
    {40, "k"},       {41, "semicolon"},  {42, "backslash"},
    {43, "comma"},   {44, "slash"},      {45, "n"},
    {46, "m"},       {47, "period"},     {48, "Tab"},
    {49, "space"},   {50, "grave"},      {51, "BackSpace"},
    {53, "Escape"},  {96, "F5"},         {97, "F6"},
    {98, "F7"},      {99, "F3"},         {100, "F8"},
    {101, "F9"},     {103, "F11"},       {109, "F10"},
    {111, "F12"},    {115, "Home"},      {116, "Page_Up"},
    {117, "Delete"}, {118, "F4"},        {119, "End"},
    {120, "F2"},     {121, "Page_Down"}, {122, "F1"},
    {123, "Left"},   {124, "Right"},     {125, "Down"},
    {126, "Up"},
};

}  // namespace

std::optional<std::string> HLKeyNameForVirtualKey(std::uint32_t code) {
  const auto* key = std::find_if(std::begin(kKeyNames), std::end(kKeyNames),
                                 [code](const KeyName& name) { return name.code == code; });
  if (key == std::end(kKeyNames)) return std::nullopt;
  return key->name;
}
