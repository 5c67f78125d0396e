#pragma once
// The plumbing of the handle/body pattern, written once for every family of
// stored objects. A family X consists of:
//
//   class CXData : public virtual CSerializableData, public TBodyFactory<CXData>
//     Its fields and all rules on them: getters, setters (virtual where the
//     store's body must overrule them), IsFullyDefined, IsNearlyEqual,
//     operator==, a virtual operator=, and
//       static constexpr EObjectType kObjectType;  static constexpr long kRootGroup;
//       bool ReadStoredValue(CString const & key, TWLVariant & value);
//     (the element names the XML reader fills; true if the key was one of them).
//     It never initialises CSerializableData: the most-derived body does.
//
//   using CXDataConcrete = TDataConcrete<CXData>;   owned by one handle
//   using CXDataDB       = TDataDB<CXData>;         shared from a data source
//     A family whose stored body keeps other fields (references into the
//     store, say) writes its own database class instead.
//
//   class CX : public THandle<CXData>
//     The handle: forwards each field through Body() (const: lazy, shared)
//     or MutableBody() (private copy first), adds IsNearlyEqual, operator==
//     and its constructors. A composite overrides Congeal to congeal its
//     inner handles after its own body.
#include <velmora/foundation/CDataObjectPtr.h>
#include <velmora/foundation/CSerializable.h>

#include <concepts>
#include <type_traits>
#include <utility>

namespace Velmora {

template <class Data>
class TDataConcrete;

// Create and Clone for CDataObjectPtr: a family's bodies are made concrete.
template <class Data>
struct TBodyFactory
{
  static Data * Create();
  static Data * Clone(Data const & source);
};

namespace detail {
// A family's own constructor arguments: anything but a lone body, which is a copy.
// (Bodies are abstract until made concrete or stored, so this cannot ask Data.)
template <class Data, class... A>
concept FamilyArguments =
  sizeof...(A) >= 1 && !(sizeof...(A) == 1 && (std::derived_from<std::remove_cvref_t<A>, Data> && ...));
} // namespace detail

template <class Data>
class TDataConcrete final : public Data, public CSerializableDataConcrete
{
public:
  TDataConcrete() : CSerializableData(CString(), Data::kObjectType, Data::kRootGroup) {}
  TDataConcrete(TDataConcrete const & source) : CSerializableData(source), Data(source) {}
  // A concrete copy of any body of the family, shared or owned.
  explicit TDataConcrete(Data const & source) : CSerializableData(source), Data(source) {}
  template <class... A>
    requires detail::FamilyArguments<Data, A...>
  explicit TDataConcrete(A &&... args)
    : CSerializableData(CString(), Data::kObjectType, Data::kRootGroup), Data(std::forward<A>(args)...)
  {
  }

  using Data::operator=;
};

template <class Data>
class TDataDB final : public Data, public CSerializableDataDB
{
public:
  TDataDB() : CSerializableData(CString(), Data::kObjectType, Data::kRootGroup) {}
  TDataDB(TDataDB const & source) : CSerializableData(source), Data(source) {}
  // How a store copies a caller's object into itself.
  TDataDB(Data const & source, DB::CDataSource const *) : CSerializableData(source), Data(source) {}
  template <class... A>
    requires detail::FamilyArguments<Data, A...>
  explicit TDataDB(A &&... args) : CSerializableData(CString(), Data::kObjectType, Data::kRootGroup), Data(std::forward<A>(args)...)
  {
  }

  using Data::operator=;

  void SetValue(CString const & key, TWLVariant & value) override
  {
    if (!this->ReadStoredValue(key, value))
      CSerializableDataDB::SetValue(key, value);
  }
};

template <class Data>
Data * TBodyFactory<Data>::Create()
{
  return new TDataConcrete<Data>();
}

template <class Data>
Data * TBodyFactory<Data>::Clone(Data const & source)
{
  return new TDataConcrete<Data>(source);
}

// The handle of a family: one CDataObjectPtr and the frame's access to it.
// Base is CSerializable, or an abstract handle between (points, systems).
template <class Data, class Base = CSerializable>
class THandle : public Base
{
public:
  using DataType = Data;

  THandle() = default;
  THandle(THandle const & other) : Base(other), m_data(other.m_data) {}
  THandle & operator=(THandle const & other)
  {
    m_data = other.m_data;
    return *this;
  }
  ~THandle() override = default;

  void Congeal() override { m_data.Dereference(); }

  // Whether a body is held yet; a default handle has none until first used.
  bool IsDefined() const { return m_data.Assigned(); }

protected:
  // Shares a stored body, or copies an owned one: the pointer's rules decide.
  explicit THandle(Data const & body) : m_data(&body) {}

  Data const & Body() const { return *m_data; }
  Data & MutableBody() { return *m_data; }

  CDataObjectPtr<Data> m_data;

private:
  CSerializableData & GetData() override { return *m_data; }
  CSerializableData const & GetData() const override { return *m_data; }
};

} // namespace Velmora
