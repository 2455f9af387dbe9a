#pragma once

#include <QString>
#include <memory>

// The data store as a file of this machine, for the upkeep of the file itself: a copy that is a
// whole database even while other seats save, and a compaction whose result is put in place
// while no other seat reads or writes. Which engine the file belongs to stays in this layer.
// Every failure is thrown as platform::Error with a description that the user can read; the
// engine's own words where the engine failed.
namespace db {

// True when the data source `dataSource` opens the file `path` of this machine: the file exists,
// and the driver manager knows no data source of that name that would lead elsewhere.
bool isLocalStore(const QString& dataSource, const QString& path);

// Writes a copy of the store `source` as `target`. The copy is read in one consistent state of
// the store: a save of another seat is in it whole or not at all, and such a save waits while
// the pages are read. It is written into a new file beside `target`, which replaces `target` in
// one step once it is complete, so that a failed run leaves an earlier `target` as it was. A
// folder that is missing or cannot be written is a failure.
void copyStore(const QString& source, const QString& target);

// The store held for the sole use of this program: from take() until the object is dropped no
// other seat reads or writes it; a seat that wants to meanwhile waits, as for a save of another
// seat.
class SoleStore {
  public:
    // Takes the store `path` for sole use, waiting up to `waitSeconds` for the seats that read
    // or write it to finish. Fails, leaving the file as it is, when it cannot be had alone.
    static std::unique_ptr<SoleStore> take(const QString& path, int waitSeconds);

    virtual ~SoleStore() = default;
    SoleStore(const SoleStore&) = delete;
    SoleStore& operator=(const SoleStore&) = delete;

    // Writes the store compacted, without free space, as the new file `work`.
    virtual void compactInto(const QString& work) = 0;
    // Puts the contents of the store file `work` in place of the store's own, whole or not at
    // all: a failure leaves the store as it was.
    virtual void replaceWith(const QString& work) = 0;

  protected:
    SoleStore() = default;
};

} // namespace db
