// The list files of the audiowall as they lie on the disk: what is wrong with one, in words, and mending it.
//
// A list is short when it holds fewer whole records than its part needs, and torn when bytes follow its last
// whole record that make no record: an interrupted copy, a full disk, a power cut. Opening a torn list for
// work (OpenCartParts) writes an empty record over those bytes; RepairCartList keeps them first.
#pragma once

#include "core/text/RecordListFault.h"

namespace tolvex {

struct CartStore;

struct CartListFacts {
    int part = 0;
    RecordListLength length; // of an existing list; the path of any
    int error = 0;           // FileError when it cannot be read; FileNotFound when there is none

    bool isMissing() const;
    bool isTorn() const { return error == 0 && length.rest() > 0; }
    bool isShort() const { return error == 0 && length.records() < length.wanted; }
    bool isSound() const { return error == 0 && !isTorn() && !isShort(); }
    // Carts of the part whose records are there run up to this one.
    qint32 lastCart() const;
    // "sound", "short", "torn", "missing" or "unreadable".
    QString state() const;
    // What is wrong, as a sentence that names the file; empty for a sound list.
    QString inWords() const;
};

// Looks at the list of a part that has a location, and changes nothing. Cost: opening the file.
CartListFacts LookAtCartList(const CartStore& carts, int part);

struct CartListRepair {
    int error = 0;    // FileError
    qint64 added = 0; // empty records
    QString keptIn;   // the file that holds the torn bytes; empty when there were none
};

// Brings a list that is there to its length with empty records. Torn bytes go into a file of their own beside
// the list first ("Carts1.lst.torn", then "Carts1.lst.torn2" and so on); their record becomes an empty one.
// PermissionDenied when another program keeps changing the list meanwhile. Nothing is lost on any error.
CartListRepair RepairCartList(const CartStore& carts, int part);

} // namespace tolvex
