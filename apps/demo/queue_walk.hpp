#pragma once

namespace belvademo {

// Sends a ticket and a comment through the send queue without screens, lets the agent answer, and
// prints the queue's actions, the conversation's rows and the list cell. Returns the exit code.
int runQueueWalk();

} // namespace belvademo
