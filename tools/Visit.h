#pragma once

#include <kestdb.h>

#include <cstdlib>

#include "Interrupts.h"
#include "Terminal.h"

/// Loads the object of that ID. False when there is none.
template <class Class>
bool Load(Class& object, long id) {
  object.m_nID = id;
  return id > 0 && object.GetObject();
}

/// Visits the objects of a class in the order of their keys: `visit(object)` for each one whose
/// first key field passes `filter(number)`. Ends between two objects when a signal came. REQUIRES
/// that the caller holds CLock. THROWS Interrupted, and what the library throws for damage.
template <class Class, class Filter, class Visit>
void VisitObjects(POD* pod, Filter filter, Visit visit) {
  vBtree* tree = pod->Index(Class(pod).GetVBClassIndex());
  if (tree == nullptr) Throw<CNullPtr>();
  Progress progress(tree->EntryCount);
  KSBKey key;
  KSBKey work;
  for (bool found = tree->FindFirst(key, true); found; found = tree->FindNext(key, work, true)) {
    StopIfInterrupted();
    progress.Step();
    if (!filter(std::atol(key.ObjectName))) continue;
    Class object(pod);
    object.ReadObject(key.ObjectAddress);
    visit(object);
  }
}

template <class Class, class Visit>
void VisitAll(POD* pod, Visit visit) {
  VisitObjects<Class>(
      pod, [](long) { return true; }, visit);
}

/// Those of a task alone.
template <class Class, class Visit>
void VisitOfTask(POD* pod, int task, Visit visit) {
  VisitObjects<Class>(
      pod, [task](long number) { return number == task; }, visit);
}
