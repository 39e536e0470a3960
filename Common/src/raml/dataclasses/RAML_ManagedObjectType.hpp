// SPDX-License-Identifier: MIT
/// @file RAML_ManagedObjectType.hpp
/// A managed object with its parameters.
#pragma once

#include "raml/RamlDefs.hpp"
#include "raml/dataclasses/RAML_MODefaultsType.hpp"
#include "raml/dataclasses/RAML_MOParameterType.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <utility>
#include <vector>

namespace RAML {

/// One `managedObject` element: which object it is, what is to be done with it, and its parameters.
class RAML_ManagedObjectType {
public:
    /// How the model holds it; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_ManagedObjectType>;

    /// A new object, as the constructor makes it.
    static pointer create() { return boost::make_shared<RAML_ManagedObjectType>(); }

    /// All texts empty, operation, scopes and filter the NONE members.
    RAML_ManagedObjectType();
    RAML_ManagedObjectType(const RAML_ManagedObjectType&) = delete;
    RAML_ManagedObjectType& operator=(const RAML_ManagedObjectType&) = delete;
    virtual ~RAML_ManagedObjectType();

    /// @{
    /// The members below, see there.
    const RAML_MODefaultsType& getDefaults() const { return mDefaults; }
    const std::vector<RAML_MOParameterType::pointer>& getParameters() const { return mParameters; }
    const std::string& getClassName() const { return mClassname; }
    const std::string& getVersion() const { return mVersion; }
    const std::string& getDistName() const { return mDistName; }
    const std::string& getId() const { return mId; }
    const std::string& getName() const { return mName; }
    const std::string& getVendor() const { return mVendor; }
    const std::string& getTimeStamp() const { return mTimeStamp; }
    const RAML_MOOperationType& getOperation() const { return mOperation; }
    const std::string& getOperationName() const { return mOperationName; }
    const RAML_MOLevelScopeType& getLevelScope() const { return mLevelScope; }
    const RAML_MOFuncScopeType& getFuncScope() const { return mFuncScope; }
    const RAML_MOFilterType& getFilter() const { return mFilter; }
    const std::string& getSequenceNo() const { return mSequenceNumber; }
    /// @}

    /// @{
    /// Replace the record or all parameters.
    void setDefaults(RAML_MODefaultsType defaults) { mDefaults = std::move(defaults); }
    void setParameters(std::vector<RAML_MOParameterType::pointer> parameters) { mParameters = std::move(parameters); }
    /// @}

    /// @{
    /// Store a text as it is; nothing is trimmed or checked.
    void setClassName(std::string text) { mClassname = std::move(text); }
    void setVersion(std::string text) { mVersion = std::move(text); }
    void setOperationName(std::string text) { mOperationName = std::move(text); }
    void setDistName(std::string text) { mDistName = std::move(text); }
    void setId(std::string text) { mId = std::move(text); }
    void setName(std::string text) { mName = std::move(text); }
    void setVendor(std::string text) { mVendor = std::move(text); }
    void setTimeStamp(std::string text) { mTimeStamp = std::move(text); }
    void setSequenceNo(std::string text) { mSequenceNumber = std::move(text); }
    /// @}

    // These store what the functions of RamlDefs.hpp make of a text, or the enumeration itself.
    /// @{
    /// Store what the functions of RamlDefs.hpp make of a text, or the enumeration itself.
    void setOperation(const std::string& text) { mOperation = getOperationType(text); }
    void setOperation(RAML_MOOperationType operation) { mOperation = operation; }
    void setLevelScope(const std::string& text) { mLevelScope = getLevelScopeType(text); }
    void setLevelScope(RAML_MOLevelScopeType levelScope) { mLevelScope = levelScope; }
    void setFuncScope(const std::string& text) { mFuncScope = getFuncScopeType(text); }
    void setFuncScope(RAML_MOFuncScopeType funcScope) { mFuncScope = funcScope; }
    void setFilter(const std::string& text) { mFilter = getFilterType(text); }
    void setFilter(RAML_MOFilterType filter) { mFilter = filter; }
    /// @}

    /// Appends a RAML_ParameterType::pointer or a RAML_ListType::pointer.
    template <class Pointer>
    void addMOparams(Pointer parameter)
    {
        mParameters.push_back(std::move(parameter));
    }
    /// Takes all parameters out; those that somebody else holds live on.
    void clearMOparams() { mParameters.clear(); }

    /// The first parameter of that name, simple or list; lists are not searched inside. Passes over empty pointers.
    /// @return an empty pointer when there is none.
    RAML_MOParameterType::pointer findParameter(const std::string& name) const;

    /// What `operator<<` writes for an operation.
    std::string toString(const RAML_MOOperationType& operation) const;

    /// For callers; no document fills it.
    RAML_MODefaultsType mDefaults;
    std::vector<RAML_MOParameterType::pointer> mParameters; ///< simple ones and lists, in the order of the document
    /// Attribute `class`, such as "Fan"; what sorting ranks objects by.
    std::string mClassname;
    /// Attribute `version`.
    std::string mVersion;
    /// Attribute `operation`: what is to be done with the object.
    RAML_MOOperationType mOperation = RAML_OP_NONE;
    std::string mOperationName; ///< attribute `actionName`
    std::string mDistName;      ///< the distinguished name
    /// Attribute `id`.
    std::string mId;
    /// Attribute `name`.
    std::string mName;
    /// Attribute `vendor`.
    std::string mVendor;
    /// Attribute `timeStamp`.
    std::string mTimeStamp;
    /// Attribute `levelScope`: how much of the tree below the object is meant.
    RAML_MOLevelScopeType mLevelScope = RAML_LSCOPE_NONE;
    /// Attribute `funcScope`: which function the operation is about.
    RAML_MOFuncScopeType mFuncScope = RAML_FSCOPE_NONE;
    /// Attribute `filter`: whether configuration (CM) or measurements (PM) are meant.
    RAML_MOFilterType mFilter = RAML_FILTER_NONE;
    std::string mSequenceNumber; ///< attribute `sequenceNo`, never taken for a number
};

} // namespace RAML
