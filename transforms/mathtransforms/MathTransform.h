#pragma once
// The math transform framework: a small parameterised function from one
// planar pair of coordinates to another, its body, the transforms computed
// from control-point pairs, and the factory. A transform's parameters live in
// its body; what it computes from them lives in the class, rebuilt in
// OnChange once every parameter is set.
#include <velmora/foundation/CDataObjectPtr.h>
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/measures/CoordPointCollection.h>
#include <velmora/measures/CoordPoints.h>

#include <memory>
#include <vector>

namespace Velmora::CT::MT {

class CMathTransform;
class CMathTransformFactory;

class VELMORA_API CMathTransformData : public CDataObject
{
public:
  static CMathTransformData * Create();
  static CMathTransformData * Clone(CMathTransformData const & source);

  ~CMathTransformData() override;
  virtual CMathTransformData & operator=(CMathTransformData const & other);

  CParameterCollection const & GetParameters() const { return m_parameters; }
  CParameterCollection & GetParameters() { return m_parameters; }
  CString const & GetClassType() const { return m_classType; }
  void SetClassType(CString const & classType) { m_classType = classType; }

  // Class type and parameters, exactly.
  bool operator==(CMathTransformData const & other) const;
  bool operator!=(CMathTransformData const & other) const { return !(*this == other); }
  // Every parameter set (optional ones aside) and their units known to the
  // source. A body without a class type raises code 53.
  bool IsFullyDefined(DB::CDataSource const * source) const;

protected:
  CMathTransformData() = default;
  CMathTransformData(CMathTransformData const & other) = default;

  CParameterCollection m_parameters;
  CString m_classType;
};

class VELMORA_API CMathTransformDataConcrete final : public CMathTransformData
{
public:
  CMathTransformDataConcrete() = default;
  CMathTransformDataConcrete(CMathTransformData const & source) : CMathTransformData(source) {}
  EDataObjectType GetDataObjectType() const override { return kEDataObjectConcrete; }
};

// The body a data source holds: its parameters are a read-only image of the
// file, filled by the reader; a handle that writes takes a concrete copy.
class VELMORA_API CMathTransformDataDB : public CMathTransformData
{
public:
  CMathTransformDataDB();
  CMathTransformDataDB(CMathTransformData const & source, DB::CDataSource const * store);
  EDataObjectType GetDataObjectType() const override { return kEDataObjectDB; }

  // The type whose class type text this is, exactly as spelt; -1 (and no change) for others.
  int SetMathTransformType(CString const & classType);
  int GetMathTransformType() const { return m_type; }
  CParameterCollectionDataDB & GetStoredParameters() { return *m_stored; }

private:
  void PointAtStoredParameters();

  int m_type = -1;
  std::unique_ptr<CParameterCollectionDataDB> m_stored;
};

class VELMORA_API CMathTransform : public CParameterCollectionEvent
{
public:
  // One value per kind of transform; the numbers are stable.
  enum Type : int {
    kAffine = 0,
    kFirstOrderPolynomial = 1,
    kSecondOrderPolynomial = 2,
    kLinearPolynomial2D = 3,
    kQuadraticPolynomial2D = 4,
    kCubicPolynomial2D = 5,
    kQuarticPolynomial2D = 6,
    kQuinticPolynomial2D = 7,
    kTypeCount = 8
  };

  // The class type text of a type; empty out of range.
  static CString TypeName(int type);
  // The type of a class type text, exactly as spelt; -1 for any other.
  static int TypeOf(CString const & classType);
  // How many control-point pairs a solution of the type needs; 0 out of range.
  static long RequiredPoints(int type);
  // The parameters of a type in the order they are declared (the collection
  // itself keeps name order); empty out of range.
  static std::vector<CString> ParameterNames(int type);

  ~CMathTransform() override;
  // The base caches nothing.
  void OnChange(unsigned short const * name) override;
  virtual CMathTransformData const & GetData() const { return *m_data; }
  virtual CMathTransformData & GetData() { return *m_data; }
  // Takes over the other's body and rebuilds what this class caches from it.
  virtual CMathTransform & operator=(CMathTransform const & other);
  virtual Type GetType() const = 0;
  // In place. False when the transform cannot compute (see each class).
  virtual bool Transform(double & x, double & y) const = 0;
  // Through the pair form on the internals; a height passes unchanged when
  // both points have three dimensions.
  virtual bool Transform(ML::CCoordPoint const & in, ML::CCoordPoint & out) const;

  // A new copy of the same class, with everything it holds; the caller owns it.
  virtual CMathTransform * Clone() const = 0;
  // Class type and parameters, exactly.
  virtual bool operator==(CMathTransform const & other) const;
  bool operator!=(CMathTransform const & other) const { return !(*this == other); }
  // Class types equal and parameters within 1e-6; the solution settings take
  // no part, since they do not change the function.
  bool IsNearlyEqual(CMathTransform const & other, CString & why) const;
  bool IsNearlyEqual(CMathTransform const & other) const;
  bool IsFullyDefined(DB::CDataSource const * source = nullptr) const { return GetData().IsFullyDefined(source); }
  // A private body with private parameters, so that the transform outlives a store it came from.
  void Congeal();

  CParameterCollection const & GetParameters() const { return m_data->GetParameters(); }
  // Writable parameters; this transform hears of every change.
  CParameterCollection & GetParameters();
  CString GetTypeName() const { return m_data->GetClassType(); }

protected:
  // A new concrete body of the type's class type, its parameters declared and unset.
  explicit CMathTransform(Type type);
  CMathTransform(CMathTransform const & other);

private:
  friend class CMathTransformFactory;
  // Over a stored body, shared: how the store's transforms are handed out.
  void AttachBody(CMathTransformData const & body);
  // The collection of an owned body names this transform as its listener.
  void Listen();

  CDataObjectPtr<CMathTransformData> m_data;
};

// One control point in both systems.
class VELMORA_API CPointPair
{
public:
  CPointPair() = default;
  CPointPair(CString const & name, double sourceX, double sourceY, double targetX, double targetY)
    : name(name), sourceX(sourceX), sourceY(sourceY), targetX(targetX), targetY(targetY)
  {
  }
  bool operator==(CPointPair const & other) const;
  bool operator!=(CPointPair const & other) const { return !(*this == other); }

  CString name;
  double sourceX = 0.0;
  double sourceY = 0.0;
  double targetX = 0.0;
  double targetY = 0.0;
};

// A transform whose parameters may be derived from control-point pairs. It
// is solved by Solve, and unsolved again by any change of pairs or
// parameters; parameters set directly need no pairs.
class VELMORA_API CComputedMathTransform : public CMathTransform
{
public:
  // Also the pairs, when the other is computed too.
  bool operator==(CMathTransform const & other) const override;
  // The pairs come along from a computed transform; solved only from one of the same type.
  CMathTransform & operator=(CMathTransform const & other) override;
  virtual bool Solve() = 0;

  // The internal first two values of each point; the pair takes the name of `from`.
  void AddPoint(ML::CCoordPoint const & from, ML::CCoordPoint const & to);
  void AddPoint(CPointPair const & pair);
  // Pairs by index, as far as the shorter collection goes; returns how many were added.
  long AddPointList(ML::CCoordPointCollection const & from, ML::CCoordPointCollection const & to);
  void ClearPoints();
  long GetPointCount() const { return static_cast<long>(m_pairs.size()); }
  // Code 48 for an index outside.
  CPointPair const & GetPointPair(long index) const;
  std::vector<CPointPair> const & GetPointPairs() const { return m_pairs; }
  bool IsSolved() const { return m_solved; }

protected:
  explicit CComputedMathTransform(Type type) : CMathTransform(type) {}
  CComputedMathTransform(CComputedMathTransform const &) = default;
  CComputedMathTransform & operator=(CComputedMathTransform const & other);

  // Writes a solved value; the change event is not heard as a user's change.
  void WriteSolvedParameter(CString const & name, double value);
  // True while a solution writes its values.
  bool IsWritingSolution() const { return m_writing; }

  std::vector<CPointPair> m_pairs;
  bool m_solved = false;

private:
  bool m_writing = false;
};

class VELMORA_API CMathTransformFactory
{
public:
  // A new transform of that type, parameters declared and unset; the caller
  // owns it. Code 50 for any other value.
  static CMathTransform * CreateMathTransform(CMathTransform::Type type);
  static CMathTransform * CreateMathTransform(int type) { return CreateMathTransform(static_cast<CMathTransform::Type>(type)); }
  // A transform of the stored body's type over that body, shared; code 50 for an unknown type.
  static CMathTransform * CreateMathTransform(CMathTransformDataDB const & body);

  // The highest polynomial type that the pairs allow (at most maxType) whose
  // fits both ways survive a round trip along the edges of the rectangle
  // (0, 0)-(first, second) within limit times its sides; -1 for fewer than
  // three pairs. Types are tried downwards to 1; 0 is given untested.
  static int DetermineBestMathTransform(ML::CCoordPointCollection const & from, ML::CCoordPointCollection const & to,
                                        int first, int second, double limit, int maxType);
};

} // namespace Velmora::CT::MT
