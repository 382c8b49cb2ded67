#include "index/btstack.h"

#include <new>

BtreeStack::~BtreeStack() {
  Clear();
}

BtreeStack_t* BtreeStack::Push(vbINT32 value) {
  BtreeStack_t* node = AllocNode(value);
  if (node != nullptr) InsertBefore(Head, node);
  return node;
}

BtreeStack_t* BtreeStack::Insert(vbINT32 value) {
  BtreeStack_t* node = AllocNode(value);
  if (node != nullptr) InsertAfter(Tail, node);
  return node;
}

vbINT32 BtreeStack::Pop() {
  return RemoveHead();
}

vbINT32 BtreeStack::Extract() {
  return RemoveHead();
}

vbINT32 BtreeStack::RemoveHead() {
  return FreeNode(DetachNode(Head));
}

vbINT32 BtreeStack::RemoveTail() {
  return FreeNode(DetachNode(Tail));
}

void BtreeStack::Clear() {
  while (Tail != nullptr) RemoveTail();
  MakeEmpty();
}

void BtreeStack::MakeEmpty() {
  Head = Tail = nullptr;
}

BtreeStack_t* BtreeStack::AllocNode(vbINT32 value) {
  return new (std::nothrow) BtreeStack_t{.Value = value};
}

vbINT32 BtreeStack::FreeNode(BtreeStack_t* node) {
  if (node == nullptr) return 0;
  const vbINT32 value = node->Value;
  delete node;
  return value;
}

BtreeStack_t* BtreeStack::DetachNode(BtreeStack_t* node) {
  if (node == nullptr) return nullptr;
  (node->Prev == nullptr ? Head : node->Prev->Next) = node->Next;
  (node->Next == nullptr ? Tail : node->Next->Prev) = node->Prev;
  node->Next = node->Prev = nullptr;
  return node;
}

void BtreeStack::InsertBefore(BtreeStack_t* place, BtreeStack_t* node) {
  node->Next = place;
  node->Prev = place == nullptr ? Tail : place->Prev;
  (node->Prev == nullptr ? Head : node->Prev->Next) = node;
  (node->Next == nullptr ? Tail : node->Next->Prev) = node;
}

void BtreeStack::InsertAfter(BtreeStack_t* place, BtreeStack_t* node) {
  InsertBefore(place == nullptr ? Head : place->Next, node);
}
