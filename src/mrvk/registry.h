// The module's classes by name: the host creates a class by the name in its menu binding.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mrvk/frame/host_contract.h"

namespace mrvk {

enum class ClassKind { Sheet, Report, Picker, Tool, Data, Dialog, Procedures, Wrapper };

struct ClassInfo {
  std::string_view name;
  ClassKind kind;
};

// Every object of the module, in file order.
const std::vector<ClassInfo>& ClassTable();

// The class's entry (names compared exactly, as the host binds them); null when unknown.
const ClassInfo* FindClass(std::string_view name);

using ClassFactory = std::function<std::unique_ptr<ModuleObject>()>;
// The factories by class name; each family of classes adds its own (RegisterMasterClasses,
// RegisterHousingClasses, ...), so a new class touches only its family's unit.
using ClassFactories = std::map<std::string, ClassFactory, std::less<>>;
void RegisterMasterClasses(ClassFactories& factories);    // mrvk/master/master_classes.cpp
void RegisterHousingClasses(ClassFactories& factories);   // mrvk/housing/housing_classes.cpp
void RegisterContractClasses(ClassFactories& factories);  // mrvk/contract/contract_classes.cpp

// Creates the named class. Returns null with a one-line reason in error when the name is
// unknown, names a dialog or a module of procedures (which the host never creates), or names
// a class that is not built yet.
std::unique_ptr<ModuleObject> CreateObject(std::string_view name, std::string& error);

// Makes a class creatable under a name. The module's classes are registered in registry.cpp;
// tests may register classes of their own under names that are not in the class table.
void RegisterClass(std::string name, ClassFactory factory);

}  // namespace mrvk
