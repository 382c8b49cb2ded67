// Private to the library, not installed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>
#include <valarray>
#include <vector>

#include "store/KestErr.h"
#include "store/vbscalar.h"

/// The encoding that all persisted classes share. A class names its stored fields once, in file
/// order, with the version that first stores them:
///
///     [](auto& file, auto& message) {
///       file(message.m_nID, message.m_vstrText);
///       file.since(2, message.m_nKind);
///     }
///
/// and the three archives here make reading, writing and the length of a record from that. Scalars
/// stand as they are, strings and vectors behind a count of 4 bytes, with no padding and no tags.

namespace kestdb {

/// The versions of a task record and of a control record that first hold a field of a block which
/// both embed.
struct BlockVersions {
  int task;
  int control;
};

/// Which record a block is part of.
enum class Embedding { Task, Control };

/// The fields of a block that records embed, named as those of a class: `Fields`.
template <class Block>
struct BlockOf;

template <class Field>
concept StoredScalar = std::is_same_v<Field, vbINT32> || std::is_same_v<Field, vbUINT32> ||
    std::is_same_v<Field, vbFLOAT64>;

/// How an element of an array in memory stands in the file.
template <class Element>
struct StoredAs {
  using type = Element;
};
template <>
struct StoredAs<int> {
  using type = vbINT32;
};
template <>
struct StoredAs<double> {
  using type = vbFLOAT64;
};
template <class Element>
using Stored = typename StoredAs<Element>::type;

/// An empty string is stored as one zero byte.
inline std::size_t StoredLength(const std::string& text) {
  return text.empty() ? 1 : text.size();
}

/// Adds up the bytes that the fields take in the file.
class RecordMeter {
 public:
  template <class... Fields>
  void operator()(const Fields&... fields) {
    (Add(fields), ...);
  }
  template <class Version, class... Fields>
  void since(const Version&, const Fields&... fields) {
    (*this)(fields...);
  }
  template <class... Fields>
  void over(const Fields&... fields) {
    (*this)(fields...);
  }
  template <class... Blocks>
  void blocks(Embedding, const Blocks&... blocks) {
    (BlockOf<Blocks>::Fields(*this, blocks), ...);
  }
  std::size_t Length() const { return length_; }

 private:
  template <StoredScalar Field>
  void Add(const Field&) {
    length_ += sizeof(Field);
  }
  void Add(const std::string& text) { length_ += sizeof(vbUINT32) + StoredLength(text); }
  template <class Element>
  void Add(const std::vector<Element>& elements) {
    length_ += sizeof(vbUINT32);
    for (const Element& element : elements) Add(element);
  }
  template <class Element>
  void Add(const std::valarray<Element>& elements) {
    length_ += sizeof(vbUINT32) + elements.size() * sizeof(Stored<Element>);
  }

  std::size_t length_ = 0;
};

/// Appends the fields to a record, in their current version.
class RecordWriter {
 public:
  explicit RecordWriter(std::vector<char>& record) : record_(record) {}

  template <class... Fields>
  void operator()(const Fields&... fields) {
    (Add(fields), ...);
  }
  template <class Version, class... Fields>
  void since(const Version&, const Fields&... fields) {
    (*this)(fields...);
  }
  template <class... Fields>
  void over(const Fields&... fields) {
    (*this)(fields...);
  }
  template <class... Blocks>
  void blocks(Embedding, const Blocks&... blocks) {
    (BlockOf<Blocks>::Fields(*this, blocks), ...);
  }

 private:
  void Append(const void* bytes, std::size_t size) {
    const char* first = static_cast<const char*>(bytes);
    record_.insert(record_.end(), first, first + size);
  }
  void AddCount(std::size_t count) { Add(vbUINT32(count)); }

  template <StoredScalar Field>
  void Add(const Field& field) {
    Append(&field, sizeof field);
  }
  void Add(const std::string& text) {
    AddCount(StoredLength(text));
    Append(text.c_str(), StoredLength(text));
  }
  template <StoredScalar Element>
  void Add(const std::vector<Element>& elements) {
    AddCount(elements.size());
    Append(elements.data(), elements.size() * sizeof(Element));
  }
  template <class Element>
  void Add(const std::vector<Element>& elements) {
    AddCount(elements.size());
    for (const Element& element : elements) Add(element);
  }
  template <class Element>
  void Add(const std::valarray<Element>& elements) {
    AddCount(elements.size());
    for (std::size_t i = 0; i < elements.size(); ++i) Add(Stored<Element>(elements[i]));
  }

  std::vector<char>& record_;
};

/// Takes fields from a source of bytes. Fields of later versions than the stored one are left as
/// they are. THROWS CFileCorrupt for a count or a length that the rest of the source can't hold.
/// The source gives the next bytes, by `const char* Next(count, width)`, and bounds what is left,
/// by `std::size_t Left()`.
template <class Source>
class FieldReader {
 public:
  FieldReader(Source source, BlockVersions versions) : source_(source), versions_(versions) {}

  template <class... Fields>
  void operator()(Fields&... fields) {
    (Take(fields), ...);
  }
  template <class... Fields>
  void since(const BlockVersions& versions, Fields&... fields) {
    if (versions_.task >= versions.task || versions_.control >= versions.control) {
      (*this)(fields...);
    }
  }
  /// For arrays of a fixed size: the stored values go over the first entries.
  template <class... Arrays>
  void over(Arrays&... arrays) {
    (TakeOver(arrays), ...);
  }

 protected:
  BlockVersions& Versions() { return versions_; }

 private:
  std::size_t TakeCount() {
    vbUINT32 count;
    Take(count);
    return count;
  }

  template <StoredScalar Field>
  void Take(Field& field) {
    std::memcpy(&field, source_.Next(1, sizeof field), sizeof field);
  }
  /// Text behind a zero byte is lost, so that the one of an empty string is.
  void Take(std::string& text) {
    const std::size_t length = TakeCount();
    const char* bytes = source_.Next(length, 1);
    text.assign(bytes, strnlen(bytes, length));
  }
  template <StoredScalar Element>
  void Take(std::vector<Element>& elements) {
    const std::size_t count = TakeCount();
    const char* bytes = source_.Next(count, sizeof(Element));
    elements.resize(count);
    if (count > 0) std::memcpy(elements.data(), bytes, count * sizeof(Element));
  }
  /// Every element starts with a count of its own, which bounds how many there can be.
  template <class Element>
  void Take(std::vector<Element>& elements) {
    const std::size_t count = TakeCount();
    if (count > source_.Left() / sizeof(vbUINT32)) Throw<CFileCorrupt>();
    elements.assign(count, Element());
    for (Element& element : elements) Take(element);
  }
  template <class Element>
  void Take(std::valarray<Element>& elements) {
    std::vector<Stored<Element>> stored;
    Take(stored);
    // Not resized: where memory runs out, some libraries leave what was freed in a valarray.
    std::valarray<Element> taken(stored.size());
    for (std::size_t i = 0; i < stored.size(); ++i) taken[i] = static_cast<Element>(stored[i]);
    elements.swap(taken);
  }
  template <class Element>
  void TakeOver(std::vector<Element>& elements) {
    std::vector<Element> stored;
    Take(stored);
    if (stored.size() > elements.size()) Throw<CFileCorrupt>();
    std::copy(stored.begin(), stored.end(), elements.begin());
  }

  Source source_;
  BlockVersions versions_;
};

/// The bytes of a record in memory.
class RecordBytes {
 public:
  explicit RecordBytes(std::span<const char> record) : rest_(record) {}

  std::size_t Left() const { return rest_.size(); }
  const char* Next(std::size_t count, std::size_t width) {
    if (count > rest_.size() / width) Throw<CFileCorrupt>();
    const char* bytes = rest_.data();
    rest_ = rest_.subspan(count * width);
    return bytes;
  }

 private:
  std::span<const char> rest_;
};

/// Takes the fields from a record, which starts with the version that it was stored in.
class RecordReader : public FieldReader<RecordBytes> {
 public:
  explicit RecordReader(std::span<const char> record)
      : FieldReader(RecordBytes(record), {.task = 0, .control = 0}) {
    vbINT32 version;
    (*this)(version);
    stored_ = version;
  }

  long StoredVersion() const { return stored_; }

  using FieldReader::since;
  template <class... Fields>
  void since(int version, Fields&... fields) {
    if (stored_ >= version) (*this)(fields...);
  }

  /// The blocks that this record embeds, by the version that it was stored in.
  template <class... Blocks>
  void blocks(Embedding embedding, Blocks&... blocks) {
    (embedding == Embedding::Task ? Versions().task : Versions().control) =
        static_cast<int>(stored_);
    (BlockOf<Blocks>::Fields(*this, blocks), ...);
  }

 private:
  long stored_ = 0;
};

}  // namespace kestdb
