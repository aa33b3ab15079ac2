// SPDX-License-Identifier: Apache-2.0
/// A class as a table: one row a fact.
///
/// The declaration, the instances and the explanations of missing values are made from the table.
///
///   struct TFan {
///     std::string fName;
///     TReading<std::uint32_t> fSpeed;
///   };
///   std::vector<TFan> ReadFans(const TRequest& request);
///
///   TTable<TFan> Fans() {
///     return {"Example_Fan", "A fan.", ReadFans,
///             {{"Name", "The label of the fan.", &TFan::fName, kKey},
///              {"Speed", "How fast it turns.", &TFan::fSpeed, TUnit{"revolution / minute"},
///               kGauge, kVolatile}}};
///   }
///
/// A row is read by a pointer to a member or by a function: of the source, of the host, or of both.
/// What that returns decides the CIM type: T or TReading<T>, where T is bool, a number,
/// std::string, TCIMDateTime, a std::vector of these, or TInstanceName for a reference. If it
/// throws, the value is missing, and the reason is that of the exception. Mistakes in a row, such
/// as a unit on a text, are compile-time errors; mistakes between rows and classes are reported
/// when the provider registers.
#ifndef QDXDESCRIBE_TABLE_H_
#define QDXDESCRIBE_TABLE_H_

#include <qdxdescribe/declaration.h>
#include <qdxdescribe/reading.h>
#include <qdxdescribe/row.h>

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace NVORNQDX20::NDescribe {

/// Instances that could be read, and why others could not. An empty list needs a reason; without
/// one a provider says "none was found".
template <typename TSource>
struct TInstances {
  TInstances() = default;
  TInstances(std::vector<TSource> all) : fAll(std::move(all)) {}
  TInstances(TMissing missing) : fReason(TReading<bool>(std::move(missing)).GetReason()) {}
  TInstances(const TReading<std::vector<TSource>>& all)
      : fAll(all ? *all : std::vector<TSource>()), fReason(all.GetReason()) {}
  TInstances(std::vector<TSource> all, TReason reason)
      : fAll(std::move(all)), fReason(std::move(reason)) {}
  /// The only instance of its class.
  TInstances(TSource only) : fIsOnly(true) { fAll.push_back(std::move(only)); }
  TInstances(const TReading<TSource>& only) : fReason(only.GetReason()), fIsOnly(true) {
    if (only) fAll.push_back(*only);
  }

  /// Adds a reason why an instance is missing.
  void Miss(const TReason& reason) { fReason.Add(reason); }

  std::vector<TSource> fAll;
  TReason fReason;
  bool fIsOnly = false;
};

namespace NDetail {

/// Calls a function that lists instances with as many arguments as it takes.
template <typename TSource, typename TLister, typename THost>
TInstances<TSource> List(const TLister& list, const THost& host, const ICIMNamespace& ns) {
  constexpr bool takesNamespace =
      std::is_invocable_v<const TLister&, const THost&, const ICIMNamespace&>;
  static_assert(takesNamespace || std::is_invocable_v<const TLister&, const THost&>,
                "instances are listed by a function of the host, or of the host and the namespace");
  if constexpr (takesNamespace) {
    return list(host, ns);
  } else if constexpr (std::is_invocable_v<const TLister&, const THost&>) {
    return list(host);
  } else {
    return TMissing{};  // never called: the assertion has failed
  }
}

}  // namespace NDetail

/// Receives the instances of one class.
class IInstanceSink {
 public:
  /// `cells` are in the order of the class's columns. Returns false once the class has as many
  /// instances as are taken.
  virtual bool Add(const std::vector<TCell>& cells, bool isOnly) = 0;
  /// Records why instances are missing.
  virtual void Miss(const TReason& reason) = 0;

 protected:
  ~IInstanceSink() = default;  // never deleted through this interface
};

/// A class without the type of its source, as a provider holds it.
template <typename THost = TRequest>
struct TClassOf {
  TClassDeclaration fDeclaration;
  /// The names of all properties, those of superclasses first.
  std::vector<std::string> fColumns;
  /// Makes the instances. The namespace has the instances of the classes before this one. Empty if
  /// the class has no instances of its own.
  std::function<void(const THost&, const ICIMNamespace&, IInstanceSink&)> fDescribe;

  /// Returns this class as one of a part that callers can choose or leave out.
  TClassOf InPart(TPart part) && {
    fDeclaration.fPart = std::move(part);
    return std::move(*this);
  }
};

/// A class: its rows, and the function that reads the sources of its instances.
template <typename TSource, typename THost = TRequest>
class TTable {
  struct TColumn {
    std::string fName;
    typename TRow<TSource, THost>::TRead fRead;
  };

 public:
  using TRows = std::vector<TRow<TSource, THost>>;

  /// The rows, from a list in braces or from a vector.
  class TGivenRows {
   public:
    TGivenRows() = default;
    /// Leaves the rows in the list empty: to copy them would take half of the time to make a table.
    TGivenRows(std::initializer_list<TRow<TSource, THost>> rows) { Take(rows); }
    TGivenRows(TRows rows) { Take(rows); }

   private:
    friend class TTable;

    template <typename TList>
    void Take(const TList& rows) {
      fColumns.reserve(rows.size());
      fProperties.reserve(rows.size());
      for (const TRow<TSource, THost>& row : rows) {
        fColumns.push_back({row.GetDeclaration().fName, row.TakeReader()});
        fProperties.push_back(row.TakeDeclaration());
      }
    }

    std::vector<TColumn> fColumns;
    std::vector<TPropertyDeclaration> fProperties;
  };

  /// `list` is a function of the host, or of the host and of the namespace with the classes before
  /// this one. It returns a TInstances, a std::vector, one TSource, or a TReading of these two.
  template <typename TLister>
  TTable(const char* name, const char* description, TLister list, TGivenRows rows)
      : TTable(name, description, std::move(rows)) {
    fDeclaration.fIsAbstract = false;
    fList = [list](const THost& host, const ICIMNamespace& ns) -> TInstances<TSource> {
      return NDetail::List<TSource>(list, host, ns);
    };
  }
  /// An abstract class: without instances of its own.
  TTable(const char* name, const char* description, TGivenRows rows)
      : fDeclaration{NDetail::Given(name, "the name of a class"),
                     NDetail::Given(description, "the description of class ", name),
                     std::move(rows.fProperties),
                     {},
                     true},
        fColumns(std::move(rows.fColumns)) {}

  /// Makes this a subclass. The superclass's rows are read from the part of the source that is a
  /// TBase, unless this table has a row of the same name.
  template <typename TBase>
  TTable DerivedFrom(TTable<TBase, THost> superclass) && {
    static_assert(std::is_base_of_v<TBase, TSource>, "the source derives from the superclass's");
    fDeclaration.fSuperclass = std::move(superclass.fDeclaration.fName);
    std::vector<TColumn> columns;
    columns.reserve(superclass.fColumns.size() + fColumns.size());
    for (auto& [name, read] : superclass.fColumns) {
      columns.push_back({std::move(name), std::move(read)});
    }
    for (TColumn& own : fColumns) {
      const auto same = [&own](const TColumn& inherited) {
        return NDetail::AreSameName(inherited.fName, own.fName);
      };
      const auto overridden = std::find_if(columns.begin(), columns.end(), same);
      if (overridden == columns.end()) {
        columns.push_back(std::move(own));
      } else {
        *overridden = std::move(own);
      }
    }
    fColumns.swap(columns);
    return std::move(*this);
  }

  /// Makes this an association. Associations are described after all other classes.
  TTable AsAssociation() && {
    fDeclaration.fIsAssociation = true;
    return std::move(*this);
  }

  /// Makes this a class of a part that callers can choose or leave out.
  TTable InPart(TPart part) && {
    fDeclaration.fPart = std::move(part);
    return std::move(*this);
  }

  template <typename TOtherHost>
  operator TClassOf<TOtherHost>() const& {
    return TTable(*this);
  }
  template <typename TOtherHost>
  operator TClassOf<TOtherHost>() && {
    static_assert(std::is_same_v<TOtherHost, THost>,
                  "the table has another host than the provider: MakeProvider<THost>(...)");
    TClassOf<THost> erased;
    erased.fColumns.reserve(fColumns.size());
    for (const TColumn& column : fColumns) erased.fColumns.push_back(column.fName);
    if (fList) erased.fDescribe = TDescribe{fDeclaration.fName, std::move(fColumns), fList};
    erased.fDeclaration = std::move(fDeclaration);
    return erased;
  }

 private:
  template <typename TOtherSource, typename TOtherHost>
  friend class TTable;

  using TList = std::function<TInstances<TSource>(const THost&, const ICIMNamespace&)>;

  /// Makes the instances.
  struct TDescribe {
    void operator()(const THost& host, const ICIMNamespace& ns, IInstanceSink& sink) const {
      const TInstances<TSource> instances = fList(host, ns);
      if (!instances.fReason.empty()) sink.Miss(instances.fReason);
      std::vector<TCell> cells;
      for (const TSource& source : instances.fAll) {
        cells.clear();
        for (const TColumn& column : fColumns) {
          cells.push_back(column.fRead(source, host, fClassName));
        }
        if (!sink.Add(cells, instances.fIsOnly)) return;
      }
    }

    std::string fClassName;
    std::vector<TColumn> fColumns;
    TList fList;
  };

  TClassDeclaration fDeclaration;
  std::vector<TColumn> fColumns;  // those of superclasses first
  TList fList;
};

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_TABLE_H_
