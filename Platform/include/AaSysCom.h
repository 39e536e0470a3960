/* SPDX-License-Identifier: MIT */
/// @file AaSysCom.h
/// Message passing between execution units (EUs), in one process, between the processes of a node, and between nodes.
///
/// 1. A process starts its EUs with AaSysComEuCreateAndStart().
/// 2. An EU that wants to be addressed registers a communication point id (cpid) with AaSysComUserRegister(). Together
/// with
///    the node id it forms the address (SICAD): node id << 16 | cpid.
/// 3. A sender creates a message with AaSysComMsgCreate(), fills its payload and gives it away with AaSysComMsgSend().
/// 4. The EU that holds the cpid takes it with AaSysComMsgReceive() and destroys it with AaSysComMsgDestroy().
///
/// Order: messages from one sender to one receiver arrive in the order in which they were sent. Messages of different
/// senders may overtake each other when they come from different processes.
///
/// Delivery: a send that reports success has put the message into the receiver's queue (same process) or into the
/// kernel's queue of the receiver (other process of the node). It is lost after that only if the receiver ends before
/// taking it. Between nodes it has been given to the node's gateway, which drops the oldest of what waits for a node
/// that cannot be reached when that becomes too much, and counts and logs it.
#ifndef AA_SYS_COM_H
#define AA_SYS_COM_H

#include "AaPro.h"
#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef uint16_t TAaSysComCpid;  ///< communication point: one addressable EU of a node; 0 is nobody
typedef uint32_t TAaSysComNid;   ///< node id; 16 bits are used
typedef uint32_t TAaSysComSicad; ///< address: node id << 16 | cpid
typedef uint32_t TAaSysComMsgId; ///< message id

/// Greatest payload of a message in bytes.
#define AA_SYS_COM_MAX_PAYLOAD 65535

/// Results of the send functions.
typedef enum EAaSysComStatus {
    EAaSysComStatus_Ok = 0,         ///< the message is on its way
    EAaSysComStatus_NoMessage = 1,  ///< the handle, or the pointer to it, is null
    EAaSysComStatus_NoReceiver = 2, ///< nobody holds the receiver's cpid
    EAaSysComStatus_NoRoute = 3,    ///< the receiver's node cannot be reached from here
    EAaSysComStatus_QueueFull = 4,  ///< the receiver's queue stayed full for the whole back-pressure time
    EAaSysComStatus_NoResources = 5 ///< descriptors or memory ran out
} EAaSysComStatus;

/// Entry point of an EU. @p args points at the EU's own copy of the argument block, valid until the entry returns.
typedef void* (*TAaSysComEuEntry)(void* args);

/// Creates an EU with the EE's default scheduling policy and starts it; returns at once.
/// Same as AaSysComEuCreateAndStartWithPolicy() with `EAaProEuSchedulingPolicy_NotDefined` and without waiting.
int32_t AaSysComEuCreateAndStart(TAaProEuId* euId, const char* name, TAaSysComEuEntry entry, uint32_t stackSize,
                                 uint32_t priority, const void* args, uint32_t argsSize);

/// Creates an EU and starts it.
/// @param euId receives the EU's id before the EU runs its first instruction; may be null.
/// @param name the EU's name in logs and lists; copied. The kernel's thread name is its first 15 characters.
/// @param entry the EU's function; its result is not kept.
/// @param stackSize bytes; a provider raises it to what its system needs at least.
/// @param policy scheduling policy. Where the process may not use a real-time policy the EU runs time-shared.
/// @param priority real-time priority, limited to what the policy allows; not used with a time-sharing policy.
/// @param args the argument block; @p argsSize bytes are copied before the call returns. May be null when the size is
/// 0.
/// @param argsSize bytes of @p args.
/// @param waitForEnd 1: return only when the EU has ended; 0: return as soon as it has been started.
/// @return 0; an `errno` value when the EU could not be created (nothing has run then and @p euId is untouched).
int32_t AaSysComEuCreateAndStartWithPolicy(TAaProEuId* euId, const char* name, TAaSysComEuEntry entry,
                                           uint32_t stackSize, EAaProEuSchedulingPolicy policy, uint32_t priority,
                                           const void* args, uint32_t argsSize, TBoolean waitForEnd);

/// Makes one receive call of @p euId return null ahead of its time-out: the one that is waiting now, or else the next
/// that would have to wait. Several wake-ups before that count as one. An EU that does not live is passed over. May be
/// called from a signal handler.
void AaSysComEuWakeUp(TAaProEuId euId);

/// Registers a cpid for an EU.
/// @param cpid the wanted cpid; 0 asks for any free one.
/// @param euId the EU that will receive what is sent to it.
/// @return the granted cpid: @p cpid, or another one, or 0. @p cpid is not granted while another EU of the node holds
/// it,
///   or when @p euId does not live. A cpid is free again when its holder deregisters it, ends or dies.
///   An EU that asks again for a cpid that it holds is granted it.
TAaSysComCpid AaSysComUserRegister(TAaSysComCpid cpid, TAaProEuId euId);

/// Gives up a cpid that this process holds. What has been sent to it before stays in the EU's queue.
/// @return 0; 1 when this process does not hold @p cpid.
int32_t AaSysComUserDeregister(TAaSysComCpid cpid);

/// Returns the own node's id, or 0 when the node has none.
TAaSysComNid AaSysComGetOwnNid(void);

/// Returns the address of @p cpid on the node @p nid (16 bits are used).
TAaSysComSicad AaSysComSicadGet(TAaSysComCpid cpid, TAaSysComNid nid);

/// Looks up the board that the node map gives for the node of @p sicad.
/// @return the board's number; 0 when the map does not know the node.
uint32_t AaSysComNmapGetBoard(TAaSysComSicad sicad);

/// Looks up the CPU that the node map gives for the node of @p sicad.
/// @return the CPU's number; 0 when the map does not know the node.
uint32_t AaSysComNmapGetCpu(TAaSysComSicad sicad);

/// Creates a message. Its sender is the first cpid of the calling EU, or 0 when it has none.
/// @param id message id
/// @param payloadSize payload bytes; their content is not initialised.
/// @param receiver the receiver's address
/// @return the message, owned by the caller; null when there is no memory.
void* AaSysComMsgCreate(TAaSysComMsgId id, uint16_t payloadSize, TAaSysComSicad receiver);

/// Sends a message and takes it, whatever the result; the caller's handle is set to null.
///
/// Does not wait while the receiver keeps up. A receiver whose queue is full makes the call wait for room up to the
/// provider's back-pressure time; then the message is destroyed, a warning is logged and `EAaSysComStatus_QueueFull` is
/// returned. An EU that fills its own queue does not wait.
/// @param message address of the handle.
/// @return an #EAaSysComStatus. Everything but success has been logged and the message has been destroyed.
int32_t AaSysComMsgSend(void** message);

/// Same as AaSysComMsgSend() with @p sender as the message's sender.
int32_t AaSysComMsgSendS(void** message, TAaSysComSicad sender);

/// Takes the next message of the calling EU.
/// @param timeout micro-seconds, #AA_WAIT_FOREVER or #AA_NO_WAIT.
/// @return the message, owned by the caller; null when none came in time or after AaSysComEuWakeUp().
void* AaSysComMsgReceive(int32_t timeout);

/// Takes the first message of the calling EU whose id is listed; the others stay queued in their order.
/// @param timeout as for AaSysComMsgReceive().
/// @param filter 16-bit words: the number of ids, then the ids. An empty list accepts nothing.
/// @return the message, owned by the caller; null when none came in time or after AaSysComEuWakeUp().
void* AaSysComMsgReceiveSelective(int32_t timeout, const uint16_t* filter);

/// Destroys a message and sets the handle to null. Null (either one) is passed over.
void AaSysComMsgDestroy(void** message);

/// Returns the payload, aligned for any type; null for a null handle or a message without payload.
void* AaSysComMsgGetPayload(void* message);

/// Returns the payload's size in bytes; 0 for a null handle.
uint16_t AaSysComMsgGetPayloadSize(const void* message);

/// Returns the message's id; 0 for a null handle.
TAaSysComMsgId AaSysComMsgGetId(const void* message);

/// Returns the sender's address; 0 for a null handle.
TAaSysComSicad AaSysComMsgGetSender(const void* message);

/// Returns the receiver's address; 0 for a null handle.
TAaSysComSicad AaSysComMsgGetReceiver(const void* message);

/// Sets the sender's address. Between processes a receiver accepts a sender only if its cpid is 0, is free, or is held
/// by the process that sends. A null handle is passed over.
void AaSysComMsgSetSender(void* message, TAaSysComSicad sender);

#ifdef __cplusplus
}
#endif

#endif
