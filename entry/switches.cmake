# All command-line switches, in the order in which they are listed: the source of --help, the manual page and the completions.
# Before including this file, define hl_switch(KIND NAME VALUE SUMMARY MANUAL). KIND is mode, report (an option of --explain and
# --record-scene) or option (of the application). VALUE is "", TEXT, FILE, [SECONDS] or DIRECTORY. SUMMARY is a line of --help; MANUAL is
# roff.

hl_switch(mode --dismiss-now "" "clear the banners from this process"
  "Clear the banners from this process and print one line, the status, how many were dismissed and how many are left: \\fBsuccess|3|0\\fR.")
hl_switch(mode --daemon-dismiss "" "clear the banners, through the daemon if necessary"
  "The same, through the daemon if this process has no access.")
hl_switch(mode --self-check "" "print whether access is allowed, and count the banners"
  "Print whether this process may read the screen, and how many banners it sees.")
hl_switch(mode --request-accessibility "" "ask for access to the screen"
  "Ask for access. Exits with 0 if access is granted.")
hl_switch(mode --daemon "" "clear banners for processes outside the session"
  "Clear banners for processes outside the session, through a socket in the state directory.")
hl_switch(mode --daemon-self-check "" "print whether the daemon replies"
  "Print whether the daemon replies.")
hl_switch(mode --close-matching TEXT "close the banners whose description contains TEXT"
  "Close the banners whose description contains the text.")
hl_switch(mode --auto-close-match TEXT "print whether TEXT describes an automation's banner"
  "Print whether the text is the description of a running automation's banner.")
hl_switch(mode --auto-close-probe "[SECONDS]" "close the banners of automations for a while"
  "Close the banners of running automations for that time; 10 seconds by default.")
hl_switch(mode --observe-nc "[SECONDS]" "print accessibility events of the notification server"
  "Print the accessibility events of the process that shows notifications; 10 seconds by default.")
hl_switch(mode --send-test-notifications "" "post three notifications"
  "Post three notifications, one, two and three seconds from now.")
hl_switch(mode --help "" "print this text"
  "Print the modes and options.")
hl_switch(mode --version "" "print the version"
  "Print the version.")
hl_switch(mode --explain "" "print what is on screen, and what would be pressed and why"
  "Print what is on screen, and what would be pressed and why. Presses nothing. In a file or pipe the texts of notifications are made unreadable.")
hl_switch(mode --record-scene FILE "record what is on screen, as a test of this program"
  "Write what is on screen into a new file, as a simulated desktop for this program's tests. The texts of notifications are made unreadable.")

hl_switch(report --json "" "print data (--explain)"
  "Print the same as data (\\-\\-explain).")
hl_switch(report --keep-texts "" "keep the texts of notifications readable"
  "Keep the texts of notifications readable in a file or pipe, too.")

hl_switch(option --open-settings "" "show the settings window"
  "Show the settings window at the start.")
hl_switch(option --appearance-dark "" "show the windows dark"
  "Show the windows dark.")
hl_switch(option --snapshot-windows DIRECTORY "write pictures of the windows into DIRECTORY"
  "Write a picture of each window into the directory, 1.5 seconds after the start.")
