// SPDX-License-Identifier: MIT
//
// The open GDAL dataset that a data source and its layers share. It closes with the last of them.
//
// Beside the dataset it keeps what its layers must know of each other: several layer objects may
// stand on one OGR layer, which has one reading cursor; a write by one of them outdates what the
// others know; and a transaction is the dataset's, not a layer's.
//
// Transactions nest by counting. Writes outside of one are gathered in an implicit transaction
// where the driver has transactions, since storing each alone is slower by orders of magnitude; it
// is committed by `flush`, by the next explicit transaction, by changes of the set of layers and
// when the source closes. Where the driver has none, the features written since `begin` are
// remembered and deleted by `rollback`.
#ifndef JW_FOUNDATION_SOURCE_HANDLE_H
#define JW_FOUNDATION_SOURCE_HANDLE_H

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/gdal_errors.h"
#include "jw_spatialreference.h"

class GDALDataset;
class OGRLayer;

namespace jws {

struct JWSourceHandle {
  public:
    /// Takes the dataset over. `created` says that it was made by this program just now.
    JWSourceHandle(GDALDataset* dataset, std::string name, bool update, bool created);
    ~JWSourceHandle();
    JWSourceHandle(const JWSourceHandle&) = delete;
    JWSourceHandle& operator=(const JWSourceHandle&) = delete;

    /// What the layer objects on one OGR layer share.
    struct LayerState {
        const void* cursorOwner = nullptr;
        std::uint64_t changes = 0;
        std::int64_t offered = 0;  ///< features that the program wanted written
        std::int64_t written = 0;  ///< of these, to a source created here
        /// That of a layer created here: its coordinates are in it, even if the format does not
        /// tell it before the file is closed, or not at all, or converts them to another one.
        std::optional<JWSpatialReference> reference;
    };

    GDALDataset& dataset() { return *m_dataset; }
    const std::string& name() const { return m_name; }
    const std::string& driver() const { return m_driver; }
    bool isDriver(const char* name) const { return m_driver == name; }
    /// Drivers that hand filters and statements on to a database.
    bool isDatabase() const { return m_isDatabase; }
    /// Drivers that hand out what a rectangle filter lets pass in the order of their spatial index.
    bool ordersByIndex() const { return isDatabase() || isDriver("OpenFileGDB"); }
    bool isMemory() const { return m_isMemory; }
    bool isUpdate() const { return m_update; }
    bool isCreated() const { return m_created; }
    /// The driver complained of geometries, and which ones is not known.
    bool suspectsGeometries() const { return m_suspectsGeometries; }
    void suspectGeometries() { m_suspectsGeometries = true; }

    LayerState& state(const OGRLayer& layer) { return m_states[&layer]; }
    /// A layer is about to be deleted.
    void forget(const OGRLayer& layer);
    /// Owner of the reading cursor of a layer; drivers that read one layer at a time have one for
    /// all.
    const void*& cursorOwner(const OGRLayer& layer);

    bool begin();
    bool commit();
    bool rollback();
    /// Commits the implicit transaction, if any.
    bool commitImplicit();
    /// Opens the implicit transaction unless there is one of either kind.
    bool beforeWrite();
    /// Notes a feature that was written, and marks its layer as changed.
    void afterWrite(OGRLayer& layer, std::int64_t fid);
    /// True for layers that cannot be read until the file just created is closed.
    bool isWriteOnly(OGRLayer& layer) const;
    /// Features written to a layer of a created source.
    std::int64_t writtenTo(OGRLayer& layer) const;
    bool flush();

    /// Closes `handle` when it is the last one, and forgets it. Returns false with the last error
    /// set when data could not be written.
    static bool release(std::shared_ptr<JWSourceHandle>& handle);

  private:
    bool close();
    /// Has all readers find their places again: drivers may have rewound their layers.
    void forgetCursors();
    bool undoWrites();
    /// Ends the driver's transaction; takes it back when it cannot be stored.
    bool store();
    /// Has all layers forget what they know of features.
    void outdate();
    bool fail(const detail::GdalErrors& errors, const char* what) const;

    GDALDataset* m_dataset;
    std::string m_name;
    std::string m_driver;
    bool m_isDatabase;
    bool m_isMemory;
    bool m_update;
    bool m_created;
    bool m_transactions;
    bool m_implicit = false;
    bool m_suspectsGeometries = false;
    int m_depth = 0;
    std::map<const void*, LayerState> m_states;
    std::int64_t m_written = 0;  ///< to all layers of a created source
    std::vector<std::pair<OGRLayer*, std::int64_t>> m_undo;
};

}  // namespace jws

#endif  // JW_FOUNDATION_SOURCE_HANDLE_H
