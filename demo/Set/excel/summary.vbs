' summary: a script of the demo excel menu
WScript.Echo "summary"
