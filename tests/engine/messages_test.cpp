// SPDX-License-Identifier: ISC
// Requests of the editor and the rows sent to it, byte by byte.
#include "engine/messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <lv2/atom/util.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "lv2/brindle.h"

namespace brindle {
namespace {

/// Numbers URIs from 1 in the order in which they are first asked for.
class UriMap {
  public:
    LV2_URID_Map* feature() { return &feature_; }
    LV2_URID operator[](const std::string& uri) {
        for (size_t i = 0; i < uris.size(); ++i) {
            if (uris[i] == uri) {
                return static_cast<LV2_URID>(i + 1);
            }
        }
        uris.push_back(uri);
        return static_cast<LV2_URID>(uris.size());
    }
    std::vector<std::string> uris;

  private:
    LV2_URID_Map feature_ = {
        this, [](void* self, const char* uri) { return (*static_cast<UriMap*>(self))[uri]; }};
};

struct Messages : testing::Test {
    Messages() {
        map_uris(uris, map.feature());
        lv2_atom_forge_init(&forge, map.feature());
    }
    UriMap map;
    EqUris uris = {};
    LV2_Atom_Forge forge = {};
};

TEST_F(Messages, UrisAreMappedOnceEachInTheAgreedOrder) {
    UriMap fresh;
    EqUris table = {};
    map_uris(table, fresh.feature());
    const std::string atom = "http://lv2plug.in/ns/ext/atom#";
    const std::string own = "urn:brindle-audio:plugins/lv2/Brindle#";
    EXPECT_THAT(fresh.uris,
                testing::ElementsAre(atom + "Blank", atom + "Object", atom + "Vector",
                                     atom + "Float", atom + "Int", atom + "eventTransfer",
                                     own + "enableui", own + "disableui", own + "brindle",
                                     own + "samplerate", own + "plot_id", own + "plot_array"));
    EXPECT_EQ(table.atom_blank, 1u);
    EXPECT_EQ(table.disable_ui, 8u);
    EXPECT_EQ(table.plot_array, 12u);
}

/// A sequence in memory of exactly its size, so that reading beyond it is noticed by the
/// sanitizers, `shift` bytes off alignment.
class Sequence {
  public:
    explicit Sequence(LV2_URID type = 0, uint32_t unit = 0) : words_{0, type, unit, 0} {}

    /// Adds an event with a body of `words` and pads it to eight bytes.
    Sequence& event(LV2_URID type, const std::vector<uint32_t>& words) {
        return event(type, words, static_cast<uint32_t>(4 * words.size()));
    }
    /// The same with a size in its head that need not be true.
    Sequence& event(LV2_URID type, const std::vector<uint32_t>& words, uint32_t size) {
        words_.insert(words_.end(), {0, 0, size, type});
        words_.insert(words_.end(), words.begin(), words.end());
        words_.resize((words_.size() + 1) / 2 * 2);
        return *this;
    }
    /// Cuts the last `count` bytes off.
    Sequence& cut(uint32_t count) {
        cut_ = count;
        return *this;
    }
    bool read(const EqUris& uris, bool active, size_t shift = 0) const {
        const size_t size = 4 * words_.size() - cut_;
        const std::unique_ptr<uint8_t[]> memory(new uint8_t[shift + size]);
        std::memcpy(memory.get() + shift, words_.data(), size);
        const auto body_size = static_cast<uint32_t>(size - sizeof(LV2_Atom));
        std::memcpy(memory.get() + shift, &body_size, sizeof body_size);
        return read_requests(reinterpret_cast<const LV2_Atom_Sequence*>(memory.get() + shift), uris,
                             active);
    }

  private:
    std::vector<uint32_t> words_;
    uint32_t cut_ = 0;
};

TEST_F(Messages, RequestsSwitchRowsOnAndOff) {
    const std::vector<uint32_t> enable = {1, uris.enable_ui};
    const std::vector<uint32_t> disable = {1, uris.disable_ui};
    const LV2_URID object = uris.atom_object;
    for (size_t shift : {0u, 1u, 4u, 7u}) {
        SCOPED_TRACE(shift);
        for (LV2_URID type : {object, uris.atom_blank}) {
            EXPECT_TRUE(Sequence().event(type, enable).read(uris, false, shift));
            EXPECT_FALSE(Sequence().event(type, disable).read(uris, true, shift));
        }
        const auto on_off = Sequence().event(object, enable).event(object, disable);
        EXPECT_FALSE(on_off.read(uris, false, shift));
        const auto off_on = Sequence().event(object, disable).event(object, enable);
        EXPECT_TRUE(off_on.read(uris, true, shift));
        // Foreign events of any length stand between, and properties may follow the type.
        const auto among_others = Sequence()
                                      .event(uris.atom_int, {7})
                                      .event(77, {0x00643c90}, 3)
                                      .event(object, {1, uris.enable_ui, 5, 0, 4, 2, 1})
                                      .event(object, {1, uris.message})
                                      .event(77, {1, 2, 3});
        EXPECT_TRUE(among_others.read(uris, false, shift));
    }
    EXPECT_TRUE(Sequence(forge.Sequence, 99).event(object, enable).read(uris, false))
        << "the time of a request does not matter, whatever its unit";
}

TEST_F(Messages, MalformedSequencesChangeNothing) {
    const std::vector<uint32_t> enable = {1, uris.enable_ui};
    const std::vector<uint32_t> disable = {1, uris.disable_ui};
    const LV2_URID object = uris.atom_object;
    const auto both = [&](uint32_t size) {
        return std::pair{Sequence().event(object, enable, size),
                         Sequence().event(object, disable, size)};
    };
    std::vector<std::pair<Sequence, Sequence>> cases = {
        {Sequence(), Sequence()},
        {Sequence().event(uris.atom_vector, enable), Sequence().event(0, disable)},
        {Sequence().event(object, {uris.enable_ui, 0}), Sequence().event(object, {1, 0})},
        both(4),            // too short for a type
        both(9),            // runs past the end by a byte
        both(0xffffffffu),  // and by all that a size can hold
        both(0xfffffff9u),
    };
    for (uint32_t cut = 1; cut <= 32; ++cut) {
        cases.push_back({Sequence().event(object, enable).cut(cut),
                         Sequence().event(object, disable).cut(cut)});
    }
    // What follows a broken event is not read either: its place is unknown.
    cases.push_back({Sequence().event(77, {}, 4096).event(object, enable),
                     Sequence().event(77, {}, 4096).event(object, disable)});
    for (size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_FALSE(cases[i].first.read(uris, false));
        EXPECT_TRUE(cases[i].second.read(uris, true));
    }
    EXPECT_TRUE(read_requests(nullptr, uris, true));
    EXPECT_FALSE(read_requests(nullptr, uris, false));
}

/// The notify port's buffer with a capacity and whatever hosts leave there, and a guard behind it.
struct NotifyTest : Messages {
    static constexpr size_t kWords = 300;
    static constexpr uint32_t kJunk = 0xdeadbeefu;

    NotifyTest() : analyser(std::make_unique<SpectrumAnalyser>()) {
        init_analyser(*analyser, 44100.0);
        analyser->row_index = 77;
        for (size_t bin = 0; bin < kPlotBins; ++bin) {
            analyser->rows[77][bin] = -10.0f - static_cast<float>(bin) / 4.0f;
        }
    }
    LV2_Atom_Sequence* write(uint32_t capacity, bool active) {
        std::fill(std::begin(words), std::end(words), kJunk);
        words[0] = capacity;
        auto* sequence = reinterpret_cast<LV2_Atom_Sequence*>(words);
        write_notify(forge, sequence, uris, active, 44100, *analyser);
        return sequence;
    }
    void expect_junk_from(size_t word) {
        for (size_t i = word; i < kWords; ++i) {
            ASSERT_EQ(words[i], kJunk) << "in word " << i;
        }
    }
    void expect_empty_sequence() {
        EXPECT_THAT(std::vector<uint32_t>(words, words + 4),
                    testing::ElementsAre(8, map["http://lv2plug.in/ns/ext/atom#Sequence"], 0, 0));
        expect_junk_from(4);
    }

    std::unique_ptr<SpectrumAnalyser> analyser;
    alignas(8) uint32_t words[kWords];
};

TEST_F(NotifyTest, RowHasItsPlaceToTheByte) {
    write(1080, true);
    const std::string atom = "http://lv2plug.in/ns/ext/atom#";
    const std::string own = "urn:brindle-audio:plugins/lv2/Brindle#";
    std::vector<uint32_t> expected = {
        1072,
        map[atom + "Sequence"],
        0,
        0,  // size, type, unit, padding
        0,
        0,  // time in frames, 64 bits
        1048,
        map[atom + "Object"],  // the object's size and type
        1,
        map[own + "brindle"],  // its id and type
        map[own + "samplerate"],
        0,  // key and context
        4,
        map[atom + "Int"],
        44100,
        0,  // a value and padding
        map[own + "plot_id"],
        0,  //
        4,
        map[atom + "Int"],
        77,
        0,  //
        map[own + "plot_array"],
        0,  //
        972,
        map[atom + "Vector"],
        4,
        map[atom + "Float"],  // size, type, child size, child type
    };
    for (int bin = 0; bin < 241; ++bin) {
        const float level_db = -10.0f - static_cast<float>(bin) / 4.0f;
        uint32_t bits = 0;
        std::memcpy(&bits, &level_db, sizeof bits);
        expected.push_back(bits);
    }
    expected.push_back(0);  // padding
    ASSERT_EQ(expected.size(), 270u);
    EXPECT_EQ(std::vector<uint32_t>(words, words + 270), expected);
    expect_junk_from(270);
}

TEST_F(NotifyTest, AtomUtilitiesReadTheRow) {
    const LV2_Atom_Sequence* sequence = write(8192, true);
    int events = 0;
    LV2_ATOM_SEQUENCE_FOREACH(sequence, event) {
        ++events;
        ASSERT_TRUE(lv2_atom_forge_is_object_type(&forge, event->body.type));
        const auto* object = reinterpret_cast<const LV2_Atom_Object*>(&event->body);
        const LV2_Atom_Int* rate = nullptr;
        const LV2_Atom_Int* id = nullptr;
        const LV2_Atom_Vector* row = nullptr;
        EXPECT_EQ(lv2_atom_object_get_typed(object, uris.sample_rate, &rate, uris.atom_int,
                                            uris.plot_id, &id, uris.atom_int, uris.plot_array, &row,
                                            uris.atom_vector, 0),
                  3);
        ASSERT_TRUE(rate && id && row);
        EXPECT_EQ(rate->body, 44100);
        EXPECT_EQ(id->body, 77);
        ASSERT_EQ(row->atom.size, sizeof(LV2_Atom_Vector_Body) + 241 * sizeof(float));
        EXPECT_EQ(std::memcmp(row + 1, analyser->rows[77].data(), 241 * sizeof(float)), 0);
    }
    EXPECT_EQ(events, 1);
}

TEST_F(NotifyTest, SequenceIsEmptyWhereTheRowIsNotWantedOrDoesNotFit) {
    write(8192, false);
    expect_empty_sequence();
    for (uint32_t capacity : {16u, 24u, 104u, 1024u, 1072u, 1079u}) {
        SCOPED_TRACE(capacity);
        write(capacity, true);
        expect_empty_sequence();
    }
}

TEST_F(NotifyTest, BufferWithoutRoomForASequenceIsLeftAlone) {
    for (uint32_t capacity : {0u, 7u, 8u, 15u}) {
        SCOPED_TRACE(capacity);
        write(capacity, true);
        EXPECT_EQ(words[0], capacity);
        expect_junk_from(1);
    }
    write_notify(forge, nullptr, uris, true, 44100, *analyser);
}

}  // namespace
}  // namespace brindle
