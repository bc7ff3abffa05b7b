#include "app/demo_command.h"

#include <cmath>
#include <filesystem>
#include <iostream>
#include <random>

#include "app/commands.h"
#include "kvhost/host.h"
#include "kvhost/host_context.h"
#include "kvhost/lib/bill_data.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"
#include "mrvk/housing/rental_state.h"

namespace mrvk_app {
namespace {

const std::vector<std::string> kSurnames = {"王", "李", "张", "刘", "陈", "杨", "黄", "赵",
                                            "吴", "周", "徐", "孙", "马", "朱", "胡", "郭",
                                            "何", "林", "罗", "高", "郑", "梁", "谢", "宋"};
const std::vector<std::string> kGiven = {"伟", "芳", "娜", "敏", "静", "丽", "强", "磊", "军",
                                         "洋", "勇", "艳", "杰", "娟", "涛", "明", "超", "秀",
                                         "霞", "平", "刚", "桂", "英", "华", "建", "国", "文"};
const std::vector<std::string> kEstateWords = {"阳光", "翠竹", "金桂", "碧水", "锦绣", "御景",
                                               "望江", "紫荆", "春晓", "和平", "东湖", "南山"};
const std::vector<std::string> kEstateKinds = {"花园", "小区", "公寓", "家园", "新村", "苑"};
const std::vector<std::string> kDistricts = {"东城区", "西城区", "南城区", "北城区"};
const std::vector<std::string> kDevelopers = {"城建开发公司", "华安置业"};
const std::vector<std::string> kLayouts = {"一室一厅", "两室一厅", "两室两厅", "三室一厅",
                                           "三室两厅"};
const std::vector<std::string> kFacings = {"南", "北", "东", "西", "南北"};
const std::vector<std::string> kStructures = {"钢混", "砖混", "框架"};
const std::vector<std::string> kFitOuts = {"毛坯", "简装", "精装", "豪装"};
const std::vector<std::string> kProvinces = {"江苏", "浙江", "安徽", "山东", "河南",
                                             "湖北", "湖南", "四川", "广东", "福建"};
const std::vector<std::string> kPaymentModes = {"押一付一", "押一付三", "押二付三", "半年付",
                                                "年付"};
const std::vector<std::string> kEmployers = {"市第一医院",   "实验中学",     "建设银行支行",
                                             "电子科技公司", "物流有限公司", "个体经营"};

struct FeeCategory {
  const char* code;
  const char* name;
  const char* mode;
  double price;
};
const FeeCategory kFees[] = {
    {"01", "物业管理费", "按面积", 1.5}, {"02", "卫生费", "按户", 10},
    {"03", "水费", "按用量", 3.2},       {"04", "电费", "按用量", 0.6},
    {"05", "燃气费", "按用量", 2.8},     {"06", "停车费", "按户", 150},
    {"07", "电梯费", "按户", 20},        {"08", "有线电视费", "按户", 25},
};

class DemoWriter {
 public:
  DemoWriter(kvhost::Host& host, uint32_t seed, std::ostream& out)
      : host_(host), rng_(seed), out_(out) {
    bill_.Database(&host_.database());
  }

  bool Run(int units, int contracts) {
    const int estates = std::max(1, units / 400);
    const int buildings = std::max(1, units / 40);
    const int owners = std::max(1, units / 2);
    const int clients = std::max(1, units);
    return Step("fee categories", 1, [&](int) { return FeeCategories(); }) &&
           Step("estates", estates, [&](int i) { return Estate(i); }) &&
           Step("buildings", buildings, [&](int i) { return Building(i); }) &&
           Step("owners", owners, [&](int i) { return Party(i, /*client=*/false); }) &&
           Step("clients", clients, [&](int i) { return Party(i, /*client=*/true); }) &&
           Step("housing units", units, [&](int i) { return Unit(i); }) && Rooms() &&
           Contracts(contracts);
  }

  const std::string& error() const { return error_; }

 private:
  // Writes count rows by `row`, 1000 to a transaction, with progress at every tenth.
  template <typename Fn>
  bool Step(const char* what, int count, Fn row) {
    auto& db = host_.database();
    int next_report = count / 10;
    db.BeginTrans();
    for (int i = 1; i <= count; ++i) {
      if (!row(i)) {
        db.RollbackTrans();
        error_ = std::string(what) + ": " + error_;
        return false;
      }
      if (i % 1000 == 0) {
        db.CommitTrans();
        db.BeginTrans();
      }
      if (i >= next_report && count >= 10) {
        out_ << what << " " << i << "/" << count << "\n" << std::flush;
        next_report += count / 10;
      }
    }
    db.CommitTrans();
    out_ << what << " done: " << count << "\n" << std::flush;
    return true;
  }

  const std::string& Pick(const std::vector<std::string>& list) {
    return list[rng_() % list.size()];
  }
  int Between(int low, int high) { return low + static_cast<int>(rng_() % (high - low + 1)); }
  std::string Digits(int n) {
    std::string s;
    for (int i = 0; i < n; ++i) s += static_cast<char>('0' + rng_() % 10);
    return s;
  }
  static std::string Code(const char* prefix, int i, int width) {
    std::string n = std::to_string(i);
    return prefix + std::string(width > static_cast<int>(n.size()) ? width - n.size() : 0, '0') + n;
  }
  std::string PersonName() {
    std::string name = Pick(kSurnames) + Pick(kGiven);
    if (rng_() % 2) name += Pick(kGiven);
    return name;
  }

  bool Exec(const std::string& sql) {
    if (host_.database().Execute(sql)) return true;
    error_ = host_.database().Error().Description();
    return false;
  }
  bool Key(const char* table, const char* column, int32_t& id) {
    error_ = bill_.NewID(table, column, id);
    return error_.empty();
  }

  bool FeeCategories() {
    for (const FeeCategory& f : kFees) {
      int32_t id = 0;
      if (!Key("fwfykm", "费用ID", id) ||
          !Exec("insert into fwfykm (费用ID,费用编号,费用名称,计费方式,单价) values (" +
                std::to_string(id) + ",'" + f.code + "','" + f.name + "','" + f.mode + "'," +
                mrvk::NumberText(f.price) + ")"))
        return false;
    }
    return true;
  }

  bool Estate(int i) {
    int32_t id = 0;
    if (!Key("fwwy", "物业ID", id)) return false;
    estate_ids_.push_back(id);
    std::string name = Pick(kEstateWords) + Pick(kEstateKinds);
    if (i > static_cast<int>(kEstateWords.size() * kEstateKinds.size())) name += std::to_string(i);
    estate_names_.push_back(name);
    return Exec("insert into fwwy (物业ID,物业编号,物业名称,开发商,所属区域,建成年份) values (" +
                std::to_string(id) + ",'" + Code("W", i, 4) + "'," + mrvk::SqlQuoted(name) + ",'" +
                Pick(kDevelopers) + "','" + Pick(kDistricts) + "','" +
                std::to_string(Between(1995, 2012)) + "')");
  }

  bool Building(int i) {
    int32_t id = 0;
    if (!Key("fwly", "楼宇ID", id)) return false;
    const size_t estate = (i - 1) % estate_ids_.size();
    building_ids_.push_back(id);
    building_estates_.push_back(estate);
    const std::string name =
        estate_names_[estate] + std::to_string((i - 1) / estate_ids_.size() + 1) + "号楼";
    building_names_.push_back(name);
    return Exec(
        "insert into fwly (楼宇ID,楼宇编号,楼宇名称,物业ID,楼宇类型,占地面积,建筑面积,位置,"
        "简介) values (" +
        std::to_string(id) + ",'" + Code("B", i, 5) + "'," + mrvk::SqlQuoted(name) + "," +
        std::to_string(estate_ids_[estate]) + ",'" + (rng_() % 3 ? "高层住宅" : "多层住宅") + "'," +
        std::to_string(Between(400, 1500)) + "," + std::to_string(Between(3000, 20000)) + ",'" +
        Pick(kDistricts) + "','')");
  }

  bool Party(int i, bool client) {
    int32_t id = 0;
    if (!Key("fwyz", "业主ID", id)) return false;
    if (!client) owner_ids_.push_back(id);
    return Exec(
        "insert into fwyz (业主ID,业主编号,业主名称,性别,电话,身份证号,籍贯,工作单位,备注,"
        "类型,地址,联系人) values (" +
        std::to_string(id) + ",'" + Code(client ? "KH" : "YZ", i, 6) + "','" + PersonName() +
        "','" + (rng_() % 2 ? "男" : "女") + "','13" + Digits(9) + "','" + Digits(6) +
        std::to_string(Between(1950, 1995)) + Digits(8) + "','" + Pick(kProvinces) + "','" +
        Pick(kEmployers) + "',''," + (client ? "1" : "0") + ",'" + Pick(kDistricts) + "','')");
  }

  // One unit in five is let by room: two to four rooms, entered on the housing sheet and
  // saved by it, as a clerk does.
  bool Rooms() {
    std::vector<size_t> shared;
    for (size_t k = 4; k < unit_ids_.size(); k += 5) shared.push_back(k);
    size_t done = 0;
    size_t next_report = shared.size() / 10;
    for (size_t k : shared) {
      if (!UnitRooms(k)) {
        error_ = "rooms: " + error_;
        return false;
      }
      if (++done >= next_report && shared.size() >= 10) {
        out_ << "rooms " << done << "/" << shared.size() << "\n" << std::flush;
        next_report += shared.size() / 10;
      }
    }
    out_ << "rooms done: " << done << " units\n" << std::flush;
    return true;
  }

  bool UnitRooms(size_t unit_index) {
    const int32_t unit_id = unit_ids_[unit_index];
    const int area = unit_areas_[unit_index];
    const int rent = unit_rents_[unit_index];
    kvhost::Screen* sheet = host_.open("FY_MX", 640002, unit_id);
    if (!sheet) {
      error_ = host_.last_error();
      return false;
    }
    const int rooms = Between(2, 4);
    unit_rooms_[unit_index] = rooms;
    mrvk::Variant result;
    // Opened on the unit, the sheet shows it already.
    bool ok = host_.invoke(*sheet, "FileEdit", {}, result).ok() && result.AsBool();
    for (int r = 0; ok && r < rooms; ++r) {
      const int row = r + 1;
      const std::string room = std::string(1, static_cast<char>('A' + r));
      const std::string room_area = std::to_string(area / rooms);
      const std::string room_rent = std::to_string(rent / rooms / 10 * 10);
      ok = host_.gesture(*sheet, "kvGridF", -1, {"row_add"}).ok() &&
           host_.gesture(*sheet, "kvGridF", -1, {"cell_edit", room, row, 1}).ok() &&
           host_.gesture(*sheet, "kvGridF", -1, {"cell_edit", room_area, row, 2}).ok() &&
           host_.gesture(*sheet, "kvGridF", -1, {"cell_edit", room_rent, row, 3}).ok();
    }
    ok = ok && host_.invoke(*sheet, "FileSave", {}, result).ok() && result.AsBool();
    if (!ok) error_ = "the housing sheet did not save unit " + std::to_string(unit_id) + SaidWhy();
    host_.take_events();
    (void)host_.close(sheet->id);
    return ok;
  }

  // What the sheet said about a failed step: its error reports and its last box.
  std::string SaidWhy() {
    std::string why;
    for (const kvhost::HostEvent& e : host_.take_events())
      if (e.event.name == "ErrMessage") why += ": " + e.event.args[0].ToString();
    if (!host_.ui().shown.empty()) why += ": " + host_.ui().shown.back().prompt;
    return why;
  }

  // Contracts for `count` units in a shuffled order, one each: the whole unit, or one room of
  // a unit let by room. Each is typed on the contract sheet, saved and approved as a clerk
  // does, with leases begun over the last three years; half the leases that have ended are
  // terminated.
  bool Contracts(int count) {
    if (count == 0) return true;
    std::vector<size_t> order(unit_ids_.size());
    for (size_t k = 0; k < order.size(); ++k) order[k] = k;
    for (size_t k = order.size() - 1; k > 0; --k) std::swap(order[k], order[rng_() % (k + 1)]);
    // The sheet walks the contracts dated in the months of this option: 40 months take in
    // every lease the demo writes, so that each is shown again after its save and approved.
    host_.options()["befmonth"] = "40";
    kvhost::Screen* sheet = host_.open("zfHd_2", 870201, 0);
    if (!sheet) {
      error_ = "contracts: " + host_.last_error();
      return false;
    }
    host_.take_events();
    int next_report = count / 10;
    int terminated = 0;
    bool ok = true;
    for (int n = 1; ok && n <= count; ++n) {
      ok = Contract(*sheet, order[n - 1], terminated);
      if (ok && n == 1) {
        // Opened on a contract, the sheet walks that one alone and goes on to each new one
        // it saves: no save is followed by a walk over all the contracts entered so far.
        mrvk::Variant id;
        ok = Done(host_.invoke(*sheet, "GetID", {}, id));
        (void)host_.close(sheet->id);
        sheet = ok ? host_.open("zfHd_2", 870201, static_cast<int32_t>(id.ToDouble())) : nullptr;
        if (!sheet) {
          error_ = "contracts: " + (ok ? host_.last_error() : error_);
          return false;
        }
      }
      if (ok && n >= next_report && count >= 10) {
        out_ << "contracts " << n << "/" << count << "\n" << std::flush;
        next_report += count / 10;
      }
    }
    host_.take_events();
    (void)host_.close(sheet->id);
    if (!ok) {
      error_ = "contracts: " + error_;
      return false;
    }
    out_ << "contracts done: " << count << ", " << terminated << " terminated\n" << std::flush;
    return true;
  }

  // A gesture or call on a sheet; a refusal or failure of the host is kept in error_.
  bool Done(const kvhost::Status& st) {
    if (!st.ok()) error_ = st.message();
    return st.ok();
  }
  bool Type(kvhost::Screen& sheet, int index, const std::string& text) {
    return Done(host_.gesture(sheet, "kvTxt", index, {"type", text})) &&
           Done(host_.gesture(sheet, "kvTxt", index, {"leave"}));
  }
  // An operation of the sheet that answers true when it did its work.
  bool Call(kvhost::Screen& sheet, const char* method, mrvk::Variant& result) {
    return Done(host_.invoke(sheet, method, {}, result)) && result.AsBool();
  }

  bool Contract(kvhost::Screen& sheet, size_t unit_index, int& terminated) {
    // The lease begins `back` months before this one and runs 6 to 24 months. Its end never
    // falls in this month, so whether it has ended does not depend on the day of the run.
    const mrvk::Date today = host_.context().Environment().LoginDate();
    const int back = Between(1, 36);
    int months = Between(6, 24);
    if (months == back) ++months;
    const mrvk::Date start =
        mrvk::AddDays(mrvk::AddMonths(mrvk::Date::FromYmd(today.year(), today.month(), 1), -back),
                      Between(0, 27));
    const mrvk::Date signed_on = mrvk::AddDays(start, -Between(0, 10));
    const std::string room =
        unit_rooms_[unit_index] > 0
            ? std::string(1, static_cast<char>('A' + rng_() % unit_rooms_[unit_index]))
            : std::string();
    mrvk::Variant result;
    error_.clear();
    bool ok = Call(sheet, "FileNew", result) &&
              Type(sheet, 27, "00" + std::to_string(Between(1, 3))) &&
              // The unit by its number, checked against the units still to let; the sheet
              // fills in the unit and the fee rows, the rent from the unit or its room.
              Type(sheet, 18, unit_codes_[unit_index]) && (room.empty() || Type(sheet, 45, room)) &&
              Type(sheet, 44, Pick(kPaymentModes)) && Type(sheet, 5, signed_on.ToText()) &&
              // The end of the lease follows from its months.
              Type(sheet, 8, start.ToText()) && Type(sheet, 0, std::to_string(months)) &&
              // A tenant typed in full; the save creates the client.
              Type(sheet, 4, PersonName()) && Type(sheet, 28, "13" + Digits(9)) &&
              Type(sheet, 29, Pick(kEmployers)) && Type(sheet, 30, Pick(kProvinces)) &&
              Type(sheet, 31, Digits(6) + std::to_string(Between(1960, 2000)) + Digits(8)) &&
              Done(host_.gesture(sheet, "optXB", rng_() % 2 ? 3 : 2, {"click"}));
    const char* step = "enter";
    if (ok) {
      step = "save";
      ok = Call(sheet, "FileSave", result);
    }
    if (ok) {
      step = "approve";
      ok = Call(sheet, "Check", result);
    }
    if (ok && back > months && rng_() % 2 == 0) {
      // Terminating belongs to the contract status tools, which are not written yet. Until
      // they are, the demo does what they are to do: the state in one statement, then the
      // rental-state rule for the unit and room, so that they are free again.
      step = "terminate";
      ok = Done(host_.invoke(sheet, "GetID", {}, result)) && result.ToDouble() > 0 &&
           Exec("update fwhd set 状态='终止' where 合同ID=" + mrvk::NumberText(result.ToDouble()));
      if (ok) {
        error_ = mrvk::RecalcRentalState(host_.context().Database(), unit_ids_[unit_index], room);
        ok = error_.empty();
      }
      if (ok) ++terminated;
    }
    if (!ok) {
      const std::string host_said = error_.empty() ? "" : ": " + error_;
      error_ = std::string("the contract sheet did not ") + step + " a contract for unit " +
               unit_codes_[unit_index] + SaidWhy() + host_said;
    }
    host_.take_events();
    return ok;
  }

  bool Unit(int i) {
    int32_t id = 0;
    if (!Key("fwfy", "房源ID", id)) return false;
    const size_t building = (i - 1) % building_ids_.size();
    const size_t estate = building_estates_[building];
    const int floors = Between(6, 30);
    const int floor = Between(1, floors);
    // Four units a floor: 1201 to 1204 on the twelfth.
    const int slot = static_cast<int>(((i - 1) / building_ids_.size()) % 4) + 1;
    const std::string room = std::to_string(floor * 100 + slot);
    const int area = Between(40, 140);
    const int rent = area * Between(20, 45);
    unit_ids_.push_back(id);
    unit_codes_.push_back(Code("F", i, 6));
    unit_rooms_.push_back(0);
    unit_areas_.push_back(area);
    unit_rents_.push_back(rent);
    const std::string name = building_names_[building] + room + "室";
    return Exec(
        "insert into fwfy "
        "(房源ID,房源编号,房源名称,物业ID,楼宇ID,所属区域,登记日期,物业用途,楼宇类型,"
        "朝向,户型,结构,装修程度,楼层,总楼层,面积,出租价格,出租状态,业主ID,具体地址) values (" +
        std::to_string(id) + ",'" + unit_codes_.back() + "'," + mrvk::SqlQuoted(name) + "," +
        std::to_string(estate_ids_[estate]) + "," + std::to_string(building_ids_[building]) + ",'" +
        Pick(kDistricts) + "',#2012-" + std::to_string(Between(10, 12)) + "-" +
        std::to_string(Between(10, 28)) + "#,'住宅','高层住宅','" + Pick(kFacings) + "','" +
        Pick(kLayouts) + "','" + Pick(kStructures) + "','" + Pick(kFitOuts) + "','" +
        std::to_string(floor) + "','" + std::to_string(floors) + "'," + std::to_string(area) + "," +
        std::to_string(rent) + ",'未出租'," +
        std::to_string(owner_ids_[rng_() % owner_ids_.size()]) + "," +
        mrvk::SqlQuoted(Pick(kDistricts) + name) + ")");
  }

  kvhost::Host& host_;
  std::mt19937 rng_;
  std::ostream& out_;
  kvhost::BillData bill_;
  std::string error_;
  std::vector<int32_t> estate_ids_, building_ids_, owner_ids_, unit_ids_;
  std::vector<std::string> unit_codes_;
  std::vector<int> unit_areas_, unit_rents_, unit_rooms_;  // rooms: 0 for a unit let whole
  std::vector<size_t> building_estates_;
  std::vector<std::string> estate_names_, building_names_;
};

}  // namespace

int RunDemo(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  std::string url = DefaultDatabaseUrl();
  int units = 2000;
  int contracts = -1;  // about three quarters of the units unless given
  uint32_t seed = 20121011;
  for (size_t i = 0; i < args.size(); ++i) {
    const bool has_value = i + 1 < args.size();
    if (args[i] == "--database" && has_value) {
      url = args[++i];
    } else if ((args[i] == "--units" || args[i] == "--seed") && has_value) {
      const double v = mrvk::Val(args[i + 1]);
      if (v < 1 || v > 10000000 || v != std::floor(v) || mrvk::NumberText(v) != args[i + 1]) {
        err << "mrvk demo: " << args[i] << " takes a whole number from 1 to 10000000\n";
        return 2;
      }
      if (args[i] == "--units")
        units = static_cast<int>(v);
      else
        seed = static_cast<uint32_t>(v);
      ++i;
    } else if (args[i] == "--contracts" && has_value) {
      const double v = mrvk::Val(args[i + 1]);
      if (v < 0 || v > 10000000 || v != std::floor(v) || mrvk::NumberText(v) != args[i + 1]) {
        err << "mrvk demo: --contracts takes a whole number from 0 to the number of units\n";
        return 2;
      }
      contracts = static_cast<int>(v);
      ++i;
    } else {
      err << "mrvk demo: unknown argument \"" << args[i] << "\"\n"
          << "usage: mrvk demo [--database URL] [--units N] [--contracts N] [--seed S]\n";
      return 2;
    }
  }
  if (contracts < 0) {
    contracts = units * 3 / 4;
  } else if (contracts > units) {
    // One contract a unit.
    err << "mrvk demo: --contracts takes a whole number from 0 to the number of units\n";
    return 2;
  }
  EnsureSqliteFolder(url);
  // The sheets the demo saves through keep their layout files in a folder of the run's own,
  // removed at the end: demo data leaves no files beside the database or in the working folder.
  std::error_code ec;
  std::filesystem::path scratch = std::filesystem::temp_directory_path(ec) /
                                  ("mrvk-demo-" + std::to_string(std::random_device{}()));
  std::filesystem::create_directories(scratch, ec);
  struct RemoveOnExit {
    std::filesystem::path path;
    ~RemoveOnExit() {
      std::error_code ignored;  // nothing to tell: the folder is the run's scratch
      std::filesystem::remove_all(path, ignored);
    }
  } remove_scratch{scratch};
  kvhost::Host host(
      {.database = url, .user = "admin", .login_date = "", .app_path = scratch.string()});
  kvhost::Status st = host.status().ok() ? host.create_schema() : host.status();
  if (!st.ok()) {
    err << "mrvk demo: " << st.message() << "\n";
    return 1;
  }
  kvhost::db::ResultSet rs;
  if (!host.database().Query("select count(*) from fwwy", rs) || rs.values[0].ToDouble() > 0) {
    err << "mrvk demo: the database already holds estates; demo data goes into an empty one\n";
    return 1;
  }
  DemoWriter writer(host, seed, out);
  if (!writer.Run(units, contracts)) {
    err << "mrvk demo: " << writer.error() << "\n";
    return 1;
  }
  out << "demo data ready: " << url << "\n";
  return 0;
}

}  // namespace mrvk_app
