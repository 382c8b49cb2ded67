#include "index/vbtree.h"

#include <array>
#include <cstring>
#include <limits>

#include "index/vbtwalk.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"

// The header and the nodes of a tree. Search: vbtfind.cpp; insertion: vbtinsert.cpp; deletion:
// vbtdelete.cpp.

namespace {

/// The header in file order.
constexpr std::array kHeaderFields{&vBtree::Order,     &vBtree::EntrySize, &vBtree::EntryCount,
                                   &vBtree::NodeCount, &vBtree::Height,    &vBtree::Root,
                                   &vBtree::ClassID};
using HeaderImage = std::array<vbINT32, kHeaderFields.size()>;
static_assert(sizeof(HeaderImage) == 28);

HeaderImage ImageOf(const vBtree& tree) {
  HeaderImage image;
  for (std::size_t i = 0; i < image.size(); ++i) image[i] = tree.*kHeaderFields[i];
  return image;
}

/// A node in the file starts with these, then come the entries.
struct NodeHeader {
  vbINT32 KeyCount;
  vbINT32 LeftBranch;
};
static_assert(sizeof(NodeHeader) == 8);

/// Bytes of the entries in use.
std::size_t EntryBytes(const BtreeNode& node) {
  return node.IsEmpty() ? 0 : static_cast<std::size_t>(node.KeyCount * node.EntrySize);
}

constexpr long kLongestFile = std::numeric_limits<std::int32_t>::max();

/// To ask the system for the length of the file costs as much as to read a node. Nodes up to this
/// size are taken into memory without.
constexpr long kUsualNodes = 65536;

}  // namespace

namespace kestdb {

TreeWalk::TreeWalk(vBtree& tree) : tree_(tree) {
  if (tree.Database == nullptr) Throw<CBadObjectAddress>();
  const long size = tree.TotalNodeSize();
  if (tree.EntrySize <= static_cast<long>(sizeof(vbINT32)) || size <= 0 ||
      (size > kUsualNodes && size > tree.Database->Length())) {
    Throw<CFileCorrupt>();
  }
}

TreeWalk::TreeWalk(vBtree& tree, DatabaseKeyB& key) : TreeWalk(tree) {
  if (tree.EntrySize != key.KeySize() + static_cast<long>(sizeof key.Branch)) {
    Throw<CFileCorrupt>();
  }
}

void TreeWalk::Read(BtreeNode& node, vbINT32 address) {
  if (stepsLeft_-- <= 0) Throw<CFileCorrupt>();
  tree_.ReadNode(node, address);
}

void TreeWalk::ReadDown(BtreeNode& node, vbINT32 address, bool last) {
  while (address != 0) {
    Read(node, address);
    address = last ? node.GetBranch(node.KeyCount - 1) : node.LeftBranch;
  }
}

}  // namespace kestdb

vBtree::vBtree(DatabaseKeyB& key, vbINT32 order, vbINT32 classID)
    : Order(order),
      EntrySize(key.KeySize() + static_cast<long>(sizeof key.Branch)),
      ClassID(classID) {}

vBtree::~vBtree() = default;

void vBtree::RequireDatabase() const {
  if (Database == nullptr) Throw<CBadObjectAddress>();
}

void vBtree::InitBtree(vbDatabase* db, int create, vbINT32 headerAddress) try {
  if (db == nullptr) Throw<CBadObjectAddress>();
  Database = db;
  InitBtree(create, headerAddress);
}
LOG_AND_RETHROW

void vBtree::InitBtree(int create, vbINT32 headerAddress) try {
  RequireDatabase();
  HeaderAddress = headerAddress;
  if (create == 0) {
    ReadBtreeHeader();
    return;
  }
  const vbINT32 root = AllocNode();
  if (root == 0) Throw<CBlockAlloc>();
  Root = root;
  Height = 1;
  EntryCount = 0;
  NodeCount = 1;
  WriteBtreeHeader();
  WriteNode(BtreeNode(EntrySize, Order), Root);
}
LOG_AND_RETHROW

void vBtree::ReadBtreeHeader() try {
  RequireDatabase();
  if (!Database->IsReadable()) Throw<CFileNotReady>();
  HeaderImage image;
  Database->Read(image.data(), sizeof image, HeaderAddress);
  TakeHeader(image);
}
LOG_AND_RETHROW

void vBtree::LoadBtreeHeader() try {
  RequireDatabase();
  const char* bytes = Database->Front(HeaderAddress, sizeof stored_);
  if (bytes == nullptr) return ReadBtreeHeader();
  HeaderImage image;
  std::memcpy(image.data(), bytes, sizeof image);
  TakeHeader(image);
}
LOG_AND_RETHROW

void vBtree::TakeHeader(const std::array<vbINT32, 7>& image) {
  for (std::size_t i = 0; i < image.size(); ++i) this->*kHeaderFields[i] = image[i];
  stored_ = image;
  HeaderCurrent = true;
}

/// Writes the header by `write(bytes, size)`.
template <class Write>
void vBtree::StoreHeader(Write write) {
  RequireDatabase();
  if (!Database->IsWriteable()) Throw<CFileNotReady>();
  const HeaderImage image = ImageOf(*this);
  write(image.data(), sizeof image);
  stored_ = image;
  HeaderCurrent = true;
}

void vBtree::WriteBtreeHeader() try {
  StoreHeader([this](const void* bytes, std::size_t size) {
    Database->Write(bytes, size, HeaderAddress, false, true);
  });
}
LOG_AND_RETHROW

bool vBtree::HeaderDiffers() const {
  return stored_ != ImageOf(*this);
}

void vBtree::ReadNode(BtreeNode& node, vbINT32 address) try {
  RequireDatabase();
  node.KeyCount = 0;
  node.FileAddress = 0;
  const auto likely = static_cast<unsigned long>(node.SizeOfBtreeNode());
  const bool sound = Database->ReadWholeObject(address, node.FileImage, likely);
  const std::vector<char>& image = node.FileImage;
  // A block that could not hold a full node of this tree is none of its nodes.
  const bool large = static_cast<long>(image.size()) >= node.SizeOfBtreeNode();
  NodeHeader header;
  if (large) std::memcpy(&header, image.data(), sizeof header);
  const bool fits = large && header.KeyCount >= 0 && header.KeyCount <= node.MaxKeys;
  if (fits) {
    node.KeyCount = header.KeyCount;
    node.LeftBranch = header.LeftBranch;
    std::memcpy(node.Entries.get(), image.data() + sizeof header, EntryBytes(node));
  }
  if (!sound) Throw<CChecksum>();
  if (!fits) Throw<CFileCorrupt>();
  if (static_cast<long>(image.size()) == node.SizeOfBtreeNode()) node.FileAddress = address;
}
LOG_AND_RETHROW

void vBtree::WriteNode(const BtreeNode& node, vbINT32 address) try {
  RequireDatabase();
  if (address <= 0) Throw<CBadObjectAddress>();
  if (node.KeyCount > node.MaxKeys) Throw<CFileCorrupt>();
  const NodeHeader header{node.KeyCount, node.LeftBranch};
  const std::size_t used = sizeof header + EntryBytes(node);
  // What lies behind the entries stays as the block holds it, so that node and checksum are one
  // verified write.
  std::vector<char>& image = node.FileImage;
  if (node.FileAddress != address) {
    Database->ReadWholeObject(address, image, static_cast<unsigned long>(node.SizeOfBtreeNode()));
  }
  node.FileAddress = 0;
  if (image.size() < used) Throw<CFileCorrupt>();
  std::memcpy(image.data(), &header, sizeof header);
  std::memcpy(image.data() + sizeof header, node.Entries.get(), used - sizeof header);
  Database->WriteWholeObject(address, image);
  node.FileAddress = address;
}
LOG_AND_RETHROW

long vBtree::TotalNodeSize() const {
  RequireDatabase();
  return BtreeNode::SizeFor(EntrySize, Order) + static_cast<long>(Database->BlockOverhead());
}

void vBtree::Flush() try {
  StoreHeader([this](const void* bytes, std::size_t size) {
    Database->WriteFront(bytes, size, HeaderAddress);
  });
}
LOG_AND_RETHROW

void vBtree::Close() try { WriteBtreeHeader(); }
LOG_AND_RETHROW

void vBtree::ReInit(bool flushFirst) try { ReInit(HeaderAddress, flushFirst); }
LOG_AND_RETHROW

void vBtree::ReInit(vbINT32 headerAddress, bool flushFirst) try {
  if (flushFirst) Flush();
  HeaderAddress = headerAddress;
  ReadBtreeHeader();
}
LOG_AND_RETHROW

int vBtree::TestTree(bool reload) try {
  RequireDatabase();
  HeaderImage image;
  Database->Read(image.data(), sizeof image, HeaderAddress);
  int differing = 0;
  for (std::size_t i = 0; i < image.size(); ++i) {
    if (this->*kHeaderFields[i] == image[i]) continue;
    differing = static_cast<int>(i) + 1;
    if (reload) ReInit(false);
  }
  return differing;
}
LOG_AND_RETHROW

/// A block for a node of this tree, 0 when there is none to be had.
vbINT32 vBtree::AllocNode() {
  const long size = BtreeNode::SizeFor(EntrySize, Order);
  if (size <= 0 || size > kLongestFile) return 0;
  return Database->Alloc(static_cast<unsigned long>(size), vbReclaimFirstFit);
}

void vBtree::RemoveNode(vbINT32 address) {
  Database->Remove(address);
  CountNodes(-1);
}

void vBtree::CountEntries(long change) {
  EntryCount = EntryCount + change;
  HeaderCurrent = false;
}

void vBtree::CountNodes(long change) {
  NodeCount = NodeCount + change;
  HeaderCurrent = false;
}
