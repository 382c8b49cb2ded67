#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "control/DesignControl.h"

// The record of the design control as a list of typed pieces, one for each stored field.

/// A value of a field, and its bytes in a record as hex.
template <class Type>
struct Typed {
  Type value;
  std::string hex;
};

/// A stored field of `Owner`: its default, another value that no neighbour has, and the version of
/// the record that first holds it.
template <class Owner>
struct Field {
  template <class Type>
  Field(Type Owner::*member, Typed<std::type_identity_t<Type>> whenChanged,
        Typed<std::type_identity_t<Type>> whenFresh, int firstVersion = 1)
      : since(firstVersion),
        changed(whenChanged.hex),
        fresh(whenFresh.hex),
        change([=](Owner& owner) { owner.*member = whenChanged.value; }),
        expect([=](const Owner& owner, bool isChanged) {
          EXPECT_EQ(owner.*member, isChanged ? whenChanged.value : whenFresh.value);
        }) {}

  /// A field of a block as one of the object that embeds it.
  template <class Block>
  Field(Block Owner::*block, const Field<Block>& field)
      : since(field.since),
        changed(field.changed),
        fresh(field.fresh),
        change([=](Owner& owner) { field.change(owner.*block); }),
        expect([=](const Owner& owner, bool isChanged) { field.expect(owner.*block, isChanged); }) {
  }

  int since;
  std::string changed;
  std::string fresh;
  std::function<void(Owner&)> change;
  std::function<void(const Owner&, bool)> expect;
};

using ControlFields = std::vector<Field<CDesignControl>>;

/// The fields in the order of the record.
ControlFields OuterFields();
ControlFields BlockFields();
ControlFields AllFields();

/// With each field at its other value.
void ChangeAll(CDesignControl& control, const ControlFields& fields);
void ExpectAll(const CDesignControl& control, const ControlFields& fields, bool changed);
