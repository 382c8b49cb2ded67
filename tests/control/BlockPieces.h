#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "control/ANLControl.h"
#include "control/DGOControl.h"
#include "control/DOEControl.h"
#include "control/NGOControl.h"
#include "control/RSAControl.h"

// The records of the control settings and of the tasks as lists of typed pieces, one for each
// stored field, and the pieces of the five control blocks that both embed.

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
  Field(Block Owner::*block, const Field<Block>& field, int firstVersion)
      : since(firstVersion),
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

template <class Owner>
using Fields = std::vector<Field<Owner>>;

// ---- Bytes ----

/// A number of one byte as it stands in four.
std::string Word(const std::string& byte);
/// A real number whose last six bytes are zero.
std::string Real(const std::string& twoBytes);
/// The text of one letter, whose code is the byte.
Typed<std::string> Letter(char letter, const std::string& byte);

inline const std::string minusOne = "FF FF FF FF ";
inline const std::string analyze = "0B 00 00 00 61 6E 61 6C 79 7A 65 2E 65 78 65 ";
inline const std::string dvar = "08 00 00 00 64 76 61 72 2E 6B 65 66 ";
inline const std::string resp = "08 00 00 00 72 65 73 70 2E 6B 65 66 ";
inline const Typed<std::string> empty{"", "01 00 00 00 00 "};

// ---- Blocks ----

/// The fields in the order of the record, with the versions of a control record.
Fields<CDGOControl> GradientFields();
Fields<CRSAControl> SurfaceFields();
Fields<CDOEControl> DesignFields();
Fields<CNGOControl> NonGradientFields();
Fields<CANLControl> AnalysisFields();

/// The version of a control record that first holds a field of a block, and that of a task record.
int ControlVersion(int controlVersion);
int TaskVersion(int controlVersion);

template <class Owner, class Block>
void Embed(Fields<Owner>& fields, Block Owner::*block, const Fields<Block>& ofBlock,
           int (*versionOf)(int)) {
  for (const Field<Block>& field : ofBlock) {
    fields.emplace_back(block, field, versionOf(field.since));
  }
}

/// The fields of the five blocks as those of the object that embeds them.
template <class Owner>
Fields<Owner> EmbeddedFields(int (*versionOf)(int)) {
  Fields<Owner> fields;
  Embed(fields, &Owner::m_DGO, GradientFields(), versionOf);
  Embed(fields, &Owner::m_RSA, SurfaceFields(), versionOf);
  Embed(fields, &Owner::m_DOE, DesignFields(), versionOf);
  Embed(fields, &Owner::m_NGO, NonGradientFields(), versionOf);
  Embed(fields, &Owner::m_ANL, AnalysisFields(), versionOf);
  return fields;
}

// ---- Lists ----

template <class Owner>
Fields<Owner> Joined(Fields<Owner> first, const Fields<Owner>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// With each field at its other value.
template <class Owner>
void ChangeAll(Owner& owner, const Fields<Owner>& fields) {
  for (const auto& field : fields) field.change(owner);
}

template <class Owner>
void ExpectAll(const Owner& owner, const Fields<Owner>& fields, bool changed) {
  for (const auto& field : fields) {
    SCOPED_TRACE(field.changed + "or " + field.fresh);
    field.expect(owner, changed);
  }
}
