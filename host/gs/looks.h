#pragma once

#include <unordered_map>

#include <db/field_place.h>
#include <gs/display_list.h>

#include "list_writer.h"
#include "plot_style_names.h"

class TvDbLayerTableRecord;

namespace gs {

/// What an entity looks like once ByLayer and ByBlock are resolved.
struct Look {
    Color color;
    std::uint8_t alpha = 255;
    std::uint8_t plotStyle = 0;
    float weightMm = 0;
    std::uint32_t layer = 0;
    TvDbObjectId linetype; ///< null: continuous
    double linetypeScale = 1;
};

/// A colour as records keep it.
struct StoredColor {
    enum class Kind : std::uint8_t { ByLayer, ByBlock, Given, None };
    Kind kind = Kind::ByLayer;
    Color color;

    /// @p color: a structure of an index and a value, as all records but entities have.
    static StoredColor of(const db::RecordView& color, db::Version version);
    static StoredColor ofIndex(std::int64_t index);
    /// By layer and by block as @p look has it.
    Color within(const Color& look) const { return kind == Kind::Given ? color : look; }
};

/// The width that a code of 0 to 31 means; negative: by layer, by block, default.
inline constexpr float kWeightByLayer = -1, kWeightByBlock = -2, kWeightDefault = -3;
float weightOfCode(std::int64_t code);
/// The same for a width in hundredths of a millimetre, -1 to -3 as above.
float weightOfValue(std::int64_t value);

/// Where the entities of a class keep what they look like.
struct LookFields {
    LookFields() = default;
    explicit LookFields(const db::ClassDef& of);

    db::FieldPlace invisible, layer, colorFlags, rgb, transparency, book, weight, typeFlags, type,
        typeScale;
};

/// The layers of a drawing, and what they do to the looks of entities.
class Looks
{
public:
    /// Reads the layers, and gives them to the list.
    Looks(TvDbDatabase& database, ListWriter& writer);
    /// Of a drawing that the one of @p host shows as an external reference of that name: its layers
    /// come to those of @p host. Ends before that one.
    ///
    /// Its layer LAYER is the layer NAME|LAYER; where the host has that, it decides how it looks.
    /// The layer "0" is that of the host.
    Looks(TvDbDatabase& database, ListWriter& writer, Looks& host, const TvString& name);
    Looks(const Looks&) = delete;
    Looks& operator=(const Looks&) = delete;

    struct LayerLook {
        Look look;
        bool isOff = false, isFrozen = false;
        bool isZero = false; ///< what is on it in a block is on the layer of the insert
    };
    /// Of a layer that is not there: that of layer "0".
    const LayerLook& layer(std::uint64_t handle) const;
    std::size_t count() const { return m_layers.size(); }
    const LayerLook& layerAt(std::uint32_t index) const { return m_layers[index]; }

    /// What an entity looks like inside of an insert that looks like @p by; for what stands in no
    /// block, null.
    /// @param fields  of its class.
    Look resolve(const db::Record& entity, const LookFields& fields, const Look* by) const;

private:
    Look lookOfLayer(TvDbObjectId id) const;
    void readLinetypes();
    std::uint32_t addLayer(ListWriter& writer, const TvDbLayerTableRecord& record,
                           const TvString& name);
    void nameLayers(const ListWriter& writer);

    std::vector<LayerLook> m_own;
    std::vector<LayerLook>& m_layers; // of the list: m_own, or those of the host
    Looks* const m_host = nullptr;    // not owned; the list's own drawing; null: this is it
    std::unordered_map<TvString, std::uint32_t> m_byName; // in small letters, once they are asked
    std::unordered_map<std::uint64_t, std::uint32_t> m_byHandle;
    mutable std::uint64_t m_lastHandle = 0; // of a layer; entities of one layer follow each other
    mutable std::uint32_t m_last = 0;       // among m_layers
    std::uint32_t m_zero = 0;
    std::uint64_t m_byLayer = 0, m_byBlock = 0, m_continuous = 0; // linetypes
    TvDbDatabase& m_database;
    PlotStyleNames m_plotStyles;
};

} // namespace gs
