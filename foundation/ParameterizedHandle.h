#pragma once
// The handle of a family whose body carries a parameter collection that the
// handle itself listens to (vertical datums, height models): the handle
// hears every change of an owned collection and rebuilds what it caches.
#include <velmora/foundation/Family.h>
#include <velmora/foundation/ParameterCollection.h>

namespace Velmora {

template <class Data>
class TParameterizedHandle : public THandle<Data>, public CParameterCollectionEvent
{
public:
  CParameterCollection const & GetParameters() const { return this->Body().GetParameters(); }
  // Writable parameters; this handle hears of every change.
  CParameterCollection & GetParameters();
  // A private body with its inner objects congealed, listened to.
  void Congeal() override;

protected:
  TParameterizedHandle() = default;
  TParameterizedHandle(TParameterizedHandle const & other);
  // Takes the other's body and rebuilds what the family caches from it.
  void AssignFrom(TParameterizedHandle const & other);
  // Over a stored body, shared: how a store hands its objects out.
  void AttachStored(Data const & body);
  // Listens to an owned parameter body; a shared one stays untouched.
  void Listen();
};

template <class Data>
TParameterizedHandle<Data>::TParameterizedHandle(TParameterizedHandle const & other)
  : THandle<Data>(other), CParameterCollectionEvent()
{
  Listen();
}

template <class Data>
CParameterCollection & TParameterizedHandle<Data>::GetParameters()
{
  CParameterCollection & parameters = this->MutableBody().GetParameters();
  // A copied or fetched body may name another listener, or none.
  if (parameters.GetEventHandler() != this)
    parameters.SetEventHandler(this);
  return parameters;
}

template <class Data>
void TParameterizedHandle<Data>::Congeal()
{
  this->m_data.Dereference();
  this->MutableBody().CongealInner();
  Listen();
}

template <class Data>
void TParameterizedHandle<Data>::AssignFrom(TParameterizedHandle const & other)
{
  this->m_data = other.m_data;
  Listen();
  OnChange(kNoParameterName);
}

template <class Data>
void TParameterizedHandle<Data>::AttachStored(Data const & body)
{
  this->m_data.Reset(&body);
  Listen();
  OnChange(kNoParameterName);
}

template <class Data>
void TParameterizedHandle<Data>::Listen()
{
  Data const * body = this->m_data.Peek();
  if (body && body->GetDataObjectType() == kEDataObjectConcrete &&
      body->GetParameters().GetData().GetDataObjectType() == kEDataObjectConcrete)
    this->MutableBody().GetParameters().SetEventHandler(this);
}

} // namespace Velmora
