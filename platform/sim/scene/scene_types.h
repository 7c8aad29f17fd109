// Types for the tables of scene_table.h, each made from the member that a key fills.
#pragma once

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "platform/sim/scene/scene_builder.h"

template <class Object, class Value>
Object HLObjectOf(Value Object::*);
template <auto kMember>
using HLOwner = decltype(HLObjectOf(kMember));

// Reads by a method of the builder.
template <auto kMember, auto kRead>
constexpr HLSceneType<HLOwner<kMember>> HLSceneBy(std::string_view name) {
  return {name, [](HLSceneBuilder& builder, const HLSceneSpot& spot, HLOwner<kMember>& object) {
            object.*kMember = (builder.*kRead)(spot);
          }};
}

template <auto kMember>
constexpr auto HLSceneText = HLSceneBy<kMember, &HLSceneBuilder::string>("string");
template <auto kMember>
constexpr auto HLSceneTextOrNull = HLSceneBy<kMember, &HLSceneBuilder::stringOrNull>("string or null");
template <auto kMember>
constexpr auto HLSceneTexts = HLSceneBy<kMember, &HLSceneBuilder::strings>("list of strings");
template <auto kMember>
constexpr auto HLSceneBoolean = HLSceneBy<kMember, &HLSceneBuilder::boolean>("boolean");
template <auto kMember>
constexpr auto HLSceneSeconds = HLSceneBy<kMember, &HLSceneBuilder::seconds>("seconds");
template <auto kMember>
constexpr auto HLScenePidKey = HLSceneBy<kMember, &HLSceneBuilder::pid>("pid");
template <auto kMember>
constexpr auto HLSceneCode = HLSceneBy<kMember, &HLSceneBuilder::code>("integer");
template <auto kMember>
constexpr auto HLSceneReferenceTo = HLSceneBy<kMember, &HLSceneBuilder::reference>("id");
template <auto kMember>
constexpr auto HLSceneErrorCodes = HLSceneBy<kMember, &HLSceneBuilder::errorCodes>("name to integer");
template <auto kMember>
constexpr auto HLSceneDictionary = HLSceneBy<kMember, &HLSceneBuilder::dictionary>("object");

template <auto kMember, std::int64_t kLeast, std::int64_t kMost>
constexpr HLSceneType<HLOwner<kMember>> HLSceneInteger(std::string_view name) {
  return {name, [](HLSceneBuilder& builder, const HLSceneSpot& spot, HLOwner<kMember>& object) {
            using Integer = std::remove_reference_t<decltype(object.*kMember)>;
            object.*kMember = static_cast<Integer>(builder.integer(spot, kLeast, kMost));
          }};
}

// Reads an object by its own table.
template <auto kMember>
constexpr HLSceneType<HLOwner<kMember>> HLSceneTable(std::string_view name) {
  return {name, [](HLSceneBuilder& builder, const HLSceneSpot& spot, HLOwner<kMember>& object) {
            builder.readObject(spot, object.*kMember);
          }};
}

// A bit set of modifier keys.
[[nodiscard]] std::uint64_t HLReadModifiers(HLSceneBuilder& builder, const HLSceneSpot& spot);
inline constexpr std::string_view HLModifiersType = "list of modifiers";
template <auto kMember>
constexpr HLSceneType<HLOwner<kMember>> HLSceneModifiers = {
    HLModifiersType, [](HLSceneBuilder& builder, const HLSceneSpot& spot, HLOwner<kMember>& object) {
      object.*kMember = HLReadModifiers(builder, spot);
    }};
template <auto kMember>
constexpr auto HLSceneKeyCode = HLSceneInteger<kMember, 0, 0xFFFF>("integer 0 to 65535");
