// The handler of all tables, called as the agent calls it. This program replaces some accessors and commit routines.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <deque>

#include "access/erp.h"
#include "access/group_addresses.h"
#include "access/hooks.h"
#include "access/wep_key_mappings.h"
#include "backend/smt/station_config.h"
#include "checks/checks.h"
#include "module.h"

using namespace dot11;

namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr int no_error = 0, generic_error = 5, wrong_type = 7, wrong_value = 10, no_creation = 11,
              inconsistent_value = 12, undo_failed = 15, not_writable = 17;

// What this program's own routines answer, and what they were called with.
struct Own {
    bool answers = true;   // whether read accessors return a value
    int write_status = 0;  // of dot11DTIMPeriod and dot11ShortSlotTimeOptionImplemented
    std::vector<int32_t> written;
    std::vector<std::pair<void*, int>> commits;  // row, new-row flag
    std::vector<std::pair<long, long>> created;  // indexes
    WEPKeyMappingsRow* row = nullptr;
} own;

int32_t own_number = 77;

void* own_answer(size_t* length) {
    EXPECT_EQ(*length, 0U) << "an accessor that sets no length has none";
    *length = own.answers ? sizeof own_number : 0;
    return own.answers ? &own_number : nullptr;
}

int own_write(const void* value, size_t length) {
    int32_t number = 0;
    EXPECT_EQ(length, sizeof number);
    memcpy(&number, value, sizeof number);
    own.written.push_back(number);
    return own.write_status;
}

}  // namespace

extern "C" {

void* get_dot11CFPollable(void*, size_t* length) {
    return own_answer(length);
}
void* get_dot11DTIMPeriod(void*, size_t* length) {
    return own_answer(length);
}
int set_dot11DTIMPeriod(void*, const void* value, size_t length) {
    return own_write(value, length);
}
int set_dot11ShortSlotTimeOptionImplemented(void*, const void* value, size_t length) {
    return own_write(value, length);
}
int check_dot11DTIMPeriod_local(int, const void*, size_t length, const void* old_value, size_t old_length) {
    EXPECT_EQ(length, sizeof own_number);
    EXPECT_EQ(old_length, own.answers ? sizeof own_number : 0);
    EXPECT_EQ(old_value ? *static_cast<const int32_t*>(old_value) : 0, own.answers ? own_number : 0);
    return 0;
}
int dot11StationConfigTable_commit_row(void** row, int is_new) {
    own.commits.emplace_back(*row, is_new);
    return 0;
}
void* dot11WEPKeyMappingsTable_create_data_context(netsnmp_variable_list* indexes) {
    own.created.emplace_back(*indexes->val.integer, *indexes->next_variable->val.integer);
    return own.row = static_cast<WEPKeyMappingsRow*>(calloc(1, sizeof(WEPKeyMappingsRow)));
}
int dot11WEPKeyMappingsTable_commit_row(void** row, int is_new) {
    own.commits.emplace_back(*row, is_new);
    return 0;
}

}  // extern "C"

namespace {

// A list of requests for one table, and the PDU around it.
class Requests {
  public:
    Requests(const std::string& table, std::vector<oid> root)
        : handler_(symbol<Netsnmp_Node_Handler>(table + "_handler")), root_(std::move(root)) {
        own = {};
    }
    ~Requests() {
        netsnmp_free_all_list_data(info_.agent_data);
        for (Item& item : items_) {
            netsnmp_free_request_data_sets(&item.request);
            snmp_reset_var_buffers(&item.varbind);
            snmp_reset_var_buffers(&item.index);
            snmp_reset_var_buffers(&item.second_index);
        }
    }
    Requests(const Requests&) = delete;
    Requests& operator=(const Requests&) = delete;

    // A varbind of that column and row. `row` is what the iterator has found, or null.
    Requests& add(uint32_t column, std::vector<oid> indexes, void* row) {
        Item& item = items_.emplace_back();
        std::vector<oid> name = root_;
        name.insert(name.end(), {1, column});
        name.insert(name.end(), indexes.begin(), indexes.end());
        snmp_set_var_objid(&item.varbind, name.data(), name.size());
        item.varbind.type = ASN_NULL;
        put_index(item.index, indexes[0]);
        put_index(item.second_index, indexes.size() > 1 ? indexes[1] : 0);
        item.index.next_variable = &item.second_index;
        item.table.colnum = column;
        item.table.indexes = &item.index;
        item.table.number_indexes = static_cast<unsigned>(indexes.size());
        item.request.requestvb = &item.varbind;
        add_data(item, TABLE_HANDLER_NAME, &item.table);
        if (row) add_data(item, TABLE_ITERATOR_NAME, row);
        return *this;
    }
    Requests& add(uint32_t column, std::vector<oid> indexes, void* row, long integer) {
        add(column, std::move(indexes), row);
        netsnmp_variable_list& varbind = items_.back().varbind;
        snmp_set_var_typed_integer(&varbind, ASN_INTEGER, 0);
        *varbind.val.integer = integer;  // as it is: the library would cut it to 32 bits
        return *this;
    }
    Requests& add(uint32_t column, std::vector<oid> indexes, void* row, const std::string& octets) {
        add(column, std::move(indexes), row);
        snmp_set_var_typed_value(&items_.back().varbind, ASN_OCTET_STR, octets.data(), octets.size());
        return *this;
    }

    // The errors of all requests after that phase.
    std::vector<int> run(int mode) {
        info_.mode = mode;
        for (size_t i = 0; i < items_.size(); ++i) {
            netsnmp_request_info& request = items_[i].request;
            request.processed = skipped == static_cast<int>(i) ? 1 : 0;
            request.status = no_error;
            request.next = i + 1 < items_.size() ? &items_[i + 1].request : nullptr;
        }
        EXPECT_EQ(handler_(nullptr, nullptr, &info_, &items_[0].request), 0);
        std::vector<int> statuses;
        for (const Item& item : items_)
            statuses.push_back(item.request.status);
        return statuses;
    }

    // A SET up to and with that phase, of which the errors are returned.
    std::vector<int> run_set_to(int last) {
        std::vector<int> statuses;
        for (int mode = MODE_SET_RESERVE1; mode < last; ++mode)
            if (mode == MODE_SET_RESERVE1 || mode == MODE_SET_RESERVE2 || mode == MODE_SET_ACTION) run(mode);
        return run(last);
    }

    const netsnmp_variable_list& varbind(size_t i) const { return items_[i].varbind; }
    // An integer, or -1 for a varbind that has none.
    long number(size_t i) const {
        const netsnmp_variable_list& answer = items_[i].varbind;
        return answer.type == ASN_INTEGER && answer.val_len == sizeof(long) ? *answer.val.integer : -1;
    }
    void forget_table_information(size_t i) {
        netsnmp_request_remove_list_data(&items_[i].request, TABLE_HANDLER_NAME);
    }

    int skipped = -1;  // the request that counts as processed already

  private:
    struct Item {
        netsnmp_variable_list varbind = {}, index = {}, second_index = {};
        netsnmp_table_request_info table = {};
        netsnmp_request_info request = {};
    };

    static void put_index(netsnmp_variable_list& varbind, oid value) {
        const long number = static_cast<long>(value);
        snmp_set_var_typed_value(&varbind, ASN_INTEGER, &number, sizeof number);
    }
    static void add_data(Item& item, const char* name, void* data) {
        netsnmp_request_add_list_data(&item.request, netsnmp_create_data_list(name, data, nullptr));
    }

    Netsnmp_Node_Handler* handler_;
    std::vector<oid> root_;
    netsnmp_agent_request_info info_ = {};
    std::deque<Item> items_;
};

struct StationConfig : Requests {
    StationConfig() : Requests("dot11StationConfigTable", {1, 2, 840, 10036, 1, 1}) {
        for (StationConfigRow* row : {&first, &second}) {
            memset(row, 0, sizeof *row);
            row->dot11CFPPeriod = 3;
            row->dot11BeaconPeriod = 100;
        }
    }
    StationConfigRow first, second;
};

struct KeyMappings : Requests {
    KeyMappings() : Requests("dot11WEPKeyMappingsTable", {1, 2, 840, 10036, 1, 4}) {}
};

struct GroupAddresses : Requests {
    GroupAddresses() : Requests("dot11GroupAddressesTable", {1, 2, 840, 10036, 2, 3}) {}
    GroupAddressesRow first = {0, {1, 2, 3, 4, 5, 6}, 1}, second = {0, {7, 8, 9, 10, 11, 12}, 1};
};

struct Erp : Requests {
    Erp() : Requests("dot11PhyERPTable", {1, 2, 840, 10036, 4, 14}) {}
    ErpRow row = {0, 5, 0, 6, 7, 8};
};

// -- GET

TEST(Get, AnswersEveryRequestOfTheList) {
    StationConfig list;
    list.add(4, {11}, &list.first).add(12, {11}, &list.first);
    EXPECT_THAT(list.run(MODE_GET), ElementsAre(no_error, no_error));
    EXPECT_EQ(list.number(0), 3);
    EXPECT_EQ(list.number(1), 100);
}

TEST(Get, AMissingRowIsNoInstanceAndTheListGoesOn) {
    StationConfig list;
    list.add(12, {99}, nullptr).add(11, {99}, nullptr).add(24, {99}, nullptr).add(12, {99}, nullptr);
    list.add(12, {11}, &list.first);
    list.forget_table_information(3);
    const Log log;
    list.run(MODE_GET);
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(list.varbind(i).type, SNMP_NOSUCHINSTANCE) << i << ": the row is looked up before the column";
    EXPECT_EQ(list.number(4), 100);
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST(Get, RequestsThatAreProcessedOrHaveNoTableInformationAreLeftAlone) {
    StationConfig list;
    list.add(12, {11}, &list.first).add(12, {11}, &list.first).add(12, {11}, &list.first);
    list.skipped = 0;
    list.forget_table_information(1);
    list.run(MODE_GET);
    EXPECT_EQ(list.varbind(0).type, ASN_NULL);
    EXPECT_EQ(list.varbind(1).type, ASN_NULL);
    EXPECT_EQ(list.number(2), 100);
}

TEST(Get, OnlyAnAlwaysSetColumnIsSetWithoutAnAnswer) {
    StationConfig list;
    list.add(13, {11}, &list.first).add(3, {11}, &list.first);
    own.answers = false;
    list.run(MODE_GET);
    EXPECT_EQ(list.varbind(0).type, ASN_NULL);
    EXPECT_EQ(list.varbind(1).type, ASN_INTEGER);
    EXPECT_EQ(list.varbind(1).val_len, 0U);
    own.answers = true;
    list.run(MODE_GET);
    EXPECT_EQ(list.number(0), 77);
    EXPECT_EQ(list.number(1), 77);
}

TEST(Get, AColumnThatIsNotAnsweredEndsTheHandler) {
    StationConfig list;
    list.add(12, {11}, &list.first).add(11, {11}, &list.first).add(12, {11}, &list.first);
    list.run(MODE_GET);
    EXPECT_EQ(list.number(0), 100);
    EXPECT_EQ(list.varbind(1).type, ASN_NULL);
    EXPECT_EQ(list.varbind(2).type, ASN_NULL);
}

TEST(Get, AnUnknownColumnIsLoggedAndTheListGoesOn) {
    StationConfig list;
    list.add(24, {11}, &list.first).add(0, {11}, &list.first).add(12, {11}, &list.first);
    const Log log;
    list.run(MODE_GET);
    const std::string line = "3 problem encountered in dot11StationConfigTable_handler: unknown column\n";
    EXPECT_THAT(log.lines, ElementsAre(line, line));
    EXPECT_EQ(list.varbind(0).type, ASN_NULL);
    EXPECT_EQ(list.number(2), 100);
}

TEST(Modes, AnUnsupportedModeIsLogged) {
    for (const int mode : std::initializer_list<int>{MODE_GETNEXT, MODE_GETBULK, 6, 99, -2}) {
        Requests list("dot11PhyDSSSTable", {1, 2, 840, 10036, 4, 5});
        list.add(1, {11}, nullptr);
        const Log log;
        EXPECT_THAT(list.run(mode), ElementsAre(no_error));
        EXPECT_THAT(log.lines, ElementsAre("3 problem encountered in dot11PhyDSSSTable_handler: unsupported mode\n"))
            << mode;
    }
}

TEST(Modes, OnlyReserve2RefusesAColumnThatIsNotWritable) {
    for (const uint32_t column : {3U, 24U, 0U}) {
        StationConfig list;
        list.add(column, {11}, &list.first, 1);
        EXPECT_THAT(list.run(MODE_SET_RESERVE1), ElementsAre(no_error)) << column;
        EXPECT_THAT(list.run(MODE_SET_RESERVE2), ElementsAre(not_writable)) << column;
        EXPECT_THAT(list.run(MODE_SET_ACTION), ElementsAre(no_error)) << column;
        EXPECT_THAT(list.run(MODE_SET_COMMIT), ElementsAre(no_error)) << column;
        EXPECT_THAT(own.commits, ElementsAre(Pair(&list.first, 0))) << column;
        EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(no_error)) << column;
    }
}

// -- RESERVE1

TEST(Reserve1, AMissingRowIsRefusedWhereATableHasRows) {
    StationConfig list;
    list.add(12, {99}, nullptr, 100).add(12, {11}, &list.first, 100);
    EXPECT_THAT(list.run(MODE_SET_RESERVE1), ElementsAre(no_creation, no_error));
    list.run(MODE_SET_FREE);
}

TEST(Reserve1, ARefusedRowHasACommitRecordAllTheSame) {
    StationConfig list;
    list.add(13, {99}, nullptr, 5);
    list.run_set_to(MODE_SET_COMMIT);
    EXPECT_THAT(own.commits, ElementsAre(Pair(_, 1)));
}

TEST(Reserve1, AMissingRowIsMadeForItsIndexes) {
    KeyMappings list;
    list.add(3, {11, 4}, nullptr, 1).add(4, {11, 4}, nullptr, "12345");
    EXPECT_THAT(list.run(MODE_SET_RESERVE1), ElementsAre(no_error, no_error));
    EXPECT_THAT(own.created, ElementsAre(std::pair(11, 4)));
    list.run(MODE_SET_FREE);
}

// -- RESERVE2

TEST(Reserve2, SaysWhyAValueIsRefused) {
    const struct {
        uint32_t column;
        long value;
        int status;
    } facts[] = {
        {12, 1, no_error},
        {12, 65535, no_error},
        {12, 0, wrong_value},
        {12, 65536, wrong_value},
        {8, 2, no_error},
        {8, 3, inconsistent_value},
        {9, 1, wrong_type},
        {3, 1, not_writable},
        {23, 1, not_writable},
        {24, 1, not_writable},
        {0, 1, not_writable},
        // A value counts in its 32-bit form.
        {12, 0x100000001, no_error},
        {12, 0xFFFFFFFF, wrong_value},
        {12, 0x100000000, wrong_value},
        {12, -1, wrong_value},
    };
    for (const auto& [column, value, status] : facts) {
        StationConfig list;
        list.add(column, {11}, &list.first, value);
        EXPECT_THAT(list.run_set_to(MODE_SET_RESERVE2), ElementsAre(status)) << column << " = " << value;
        list.run(MODE_SET_FREE);
    }
}

TEST(Reserve2, AVarbindWithoutAValueIsAGenericError) {
    for (const u_char type : {u_char{SNMP_NOSUCHOBJECT}, u_char{SNMP_NOSUCHINSTANCE}, u_char{SNMP_ENDOFMIBVIEW}}) {
        StationConfig list;
        list.add(12, {11}, &list.first);
        const_cast<netsnmp_variable_list&>(list.varbind(0)).type = type;
        EXPECT_THAT(list.run_set_to(MODE_SET_RESERVE2), ElementsAre(generic_error));
        list.run(MODE_SET_FREE);
    }
}

TEST(Reserve2, ARefusedValueLeavesNoOldValueToUndo) {
    for (const bool has_old_value : {true, false}) {
        StationConfig list;
        list.add(13, {11}, &list.first, 0);
        own.answers = has_old_value;
        EXPECT_THAT(list.run_set_to(MODE_SET_RESERVE2), ElementsAre(wrong_value));
        EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(undo_failed));
        EXPECT_THAT(own.written, IsEmpty());
    }
}

TEST(Reserve2, ARowThatIsMissingEverywhereStartsAsZeroes) {
    GroupAddresses list;
    list.add(3, {11, 1}, nullptr, 1);  // active: no transition from no row
    EXPECT_THAT(list.run_set_to(MODE_SET_RESERVE2), ElementsAre(inconsistent_value));
    list.run(MODE_SET_FREE);
}

// -- ACTION and COMMIT

TEST(Action, TheAccessorHasTheLastWord) {
    for (const int status : {no_error, not_writable, 42}) {
        StationConfig list;
        list.add(13, {11}, &list.first, 5);
        own.write_status = status;
        EXPECT_THAT(list.run_set_to(MODE_SET_ACTION), ElementsAre(status));
        EXPECT_THAT(own.written, ElementsAre(5));
        list.run(MODE_SET_FREE);
    }
}

TEST(Action, AValueIsStoredInItsThirtyTwoBits) {
    Erp list;
    list.add(2, {11}, &list.row, 0x700000001).add(6, {11}, &list.row, 2);
    EXPECT_THAT(list.run_set_to(MODE_SET_ACTION), ElementsAre(no_error, no_error));
    EXPECT_EQ(list.row.dot11ERPBCCOptionEnabled, 1);
    EXPECT_EQ(list.row.dot11ShortSlotTimeOptionEnabled, 2);
    EXPECT_EQ(list.row.dot11DSSSOFDMOptionImplemented, 0);
    list.run(MODE_SET_COMMIT);
}

// A subagent's master may go on although the check has failed.
TEST(Action, AValueThatWasNotCheckedIsFilledUpWithZeroes) {
    GroupAddresses list;
    list.add(2, {11, 1}, &list.first, "AB").add(3, {11, 1}, &list.first, "").add(2, {11, 1}, &list.first);
    EXPECT_THAT(list.run(MODE_SET_RESERVE1), ElementsAre(no_error, no_error, no_error));
    EXPECT_THAT(list.run(MODE_SET_ACTION), ElementsAre(no_error, no_error, generic_error));
    EXPECT_EQ(memcmp(list.first.dot11Address, "AB\0\0\0\0", 6), 0);
    EXPECT_EQ(list.first.dot11GroupAddressesStatus, 0);
    list.run(MODE_SET_UNDO);
}

// The keys of the whole list come from its first varbind.
TEST(Action, TwoRowsOfOneTableWriteToTheFirst) {
    GroupAddresses list;
    list.add(2, {11, 1}, &list.first, "ABCDEF").add(2, {11, 2}, &list.second, "GHIJKL");
    EXPECT_THAT(list.run_set_to(MODE_SET_ACTION), ElementsAre(no_error, no_error));
    EXPECT_EQ(memcmp(list.first.dot11Address, "GHIJKL", 6), 0);
    EXPECT_EQ(list.second.dot11Address[0], 7);
    list.run(MODE_SET_COMMIT);
}

TEST(Action, TheRateSetEndsTheHandler) {
    StationConfig list;
    list.add(13, {11}, &list.first, 5).add(11, {11}, &list.first, "ab").add(13, {11}, &list.first, 6);
    EXPECT_THAT(list.run_set_to(MODE_SET_ACTION), ElementsAre(no_error, no_error, no_error));
    EXPECT_THAT(own.written, ElementsAre(5)) << "the third is not tried";
    list.run(MODE_SET_COMMIT);
    EXPECT_THAT(own.commits, ElementsAre(std::pair<void*, int>(&list.first, 0)));
}

TEST(Commit, OnceForARowWhateverItsColumns) {
    StationConfig list;
    list.add(13, {11}, &list.first, 5).add(13, {11}, &list.first, 6).add(13, {12}, &list.second, 7);
    EXPECT_THAT(list.run_set_to(MODE_SET_COMMIT), ElementsAre(no_error, no_error, no_error));
    EXPECT_THAT(own.commits, ElementsAre(std::pair<void*, int>(&list.first, 0)));
}

TEST(Commit, ARowThatWasMadeIsNew) {
    KeyMappings list;
    list.add(3, {11, 4}, nullptr, 2);
    EXPECT_THAT(list.run_set_to(MODE_SET_COMMIT), ElementsAre(no_error));
    EXPECT_THAT(own.commits, ElementsAre(std::pair<void*, int>(own.row, 1)));
    EXPECT_EQ(own.row->dot11WEPKeyMappingWEPOn, 2);
}

TEST(Modes, CommitFreeAndUndoEmptyBothStores) {
    for (const int last : {MODE_SET_COMMIT, MODE_SET_FREE, MODE_SET_UNDO}) {
        StationConfig list;
        list.add(13, {11}, &list.first, 5);
        list.run_set_to(last);
        own.commits.clear();
        list.run(MODE_SET_COMMIT);
        EXPECT_THAT(own.commits, IsEmpty()) << last;
    }
    for (const int last : {MODE_SET_COMMIT, MODE_SET_FREE, MODE_SET_UNDO}) {
        StationConfig list;
        list.add(13, {11}, &list.first, 5);
        list.run_set_to(last);
        list.run(MODE_SET_RESERVE1);
        EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(undo_failed)) << last << ": the old value is gone";
    }
}

// -- UNDO

TEST(Undo, WritesTheOldValueBack) {
    Erp list;
    list.add(2, {11}, &list.row, 1);
    list.run_set_to(MODE_SET_ACTION);
    ASSERT_EQ(list.row.dot11ERPBCCOptionEnabled, 1);
    EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(no_error));
    EXPECT_EQ(list.row.dot11ERPBCCOptionEnabled, 5);
}

TEST(Undo, ColumnsOfOneRowShareTheFirstOnesValue) {
    Erp list;
    list.add(2, {11}, &list.row, 1).add(4, {11}, &list.row, 2);
    list.run_set_to(MODE_SET_ACTION);
    EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(no_error, no_error));
    EXPECT_EQ(list.row.dot11ERPBCCOptionEnabled, 5);
    EXPECT_EQ(list.row.dot11DSSSOFDMOptionEnabled, 5);
}

TEST(Undo, StrictGivesTheAccessorsStatus) {
    StationConfig list;
    list.add(13, {11}, &list.first, 5);
    list.run_set_to(MODE_SET_ACTION);
    own.write_status = 42;
    EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(42));
    EXPECT_THAT(own.written, ElementsAre(5, 77));
}

TEST(Undo, PlainGivesUndoFailedForIt) {
    Erp list;
    list.add(5, {11}, &list.row, 1);
    list.run_set_to(MODE_SET_ACTION);
    own.write_status = 42;
    EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(undo_failed));
    EXPECT_THAT(own.written, ElementsAre(1, 7));
}

TEST(Undo, StrictFailsWithoutAnOldValue) {
    StationConfig list;
    list.add(13, {11}, &list.first, 5);
    own.answers = false;
    EXPECT_THAT(list.run_set_to(MODE_SET_ACTION), ElementsAre(no_error));
    EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(undo_failed));
    EXPECT_THAT(own.written, ElementsAre(5));
}

// An address is read short where it has a zero, and written back with all six octets.
TEST(Undo, AnOldValueOfNoOctetsIsWrittenBackAsZeroes) {
    KeyMappings list;
    list.add(2, {11, 4}, nullptr, "ABCDEF");
    list.run_set_to(MODE_SET_ACTION);
    EXPECT_EQ(memcmp(own.row->dot11WEPKeyMappingAddress, "ABCDEF", 6), 0);
    EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(no_error));
}

TEST(Undo, TheRateSetEndsTheHandlerAndTheCleanUpIsSkipped) {
    StationConfig list;
    list.add(11, {11}, &list.first, "ab").add(13, {11}, &list.first, 5);
    list.run_set_to(MODE_SET_ACTION);
    EXPECT_THAT(list.run(MODE_SET_UNDO), ElementsAre(no_error, no_error));
    EXPECT_THAT(own.written, IsEmpty());
    list.run(MODE_SET_COMMIT);
    EXPECT_THAT(own.commits, ElementsAre(std::pair<void*, int>(&list.first, 0))) << "the commit record is still there";
}

// What one PDU leaves behind is not there for the next one.
TEST(Undo, NothingIsLeftForTheNextPdu) {
    {
        StationConfig left;
        left.add(11, {11}, &left.first, "ab").add(13, {11}, &left.first, 5);
        left.run_set_to(MODE_SET_UNDO);
    }
    StationConfig list;
    list.add(13, {11}, &list.second, 6);
    list.run_set_to(MODE_SET_COMMIT);
    EXPECT_THAT(own.commits, ElementsAre(std::pair<void*, int>(&list.second, 0)));
}

}  // namespace
