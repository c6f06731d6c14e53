// A page's script for the control: receives a file with its progress, lets the user choose a file,
// reads it, shows what it is told when it asks for one that the user did not choose, and hears of a
// drop. ECMAScript 5, as browsers with such controls speak it.
//
// In a browser `plugin` is the control's element, and `order`, print, drop and quit are the page's;
// here tools/scripthost/ gives them: order.host is the page's host, order.source what is received,
// order.other a file that the user does not choose, but drops at the end.
var plugin_OnDrop, plugin_OnDropEx;  // hear of the control's own events

(function () {
  "use strict";

  var appId = "";
  var transferId = "";
  var latest = {};   // the newest activity of every transfer, by its id
  var lastLine = "";

  // An error comes back as text too. Its words are not escaped, so JSON.parse would not do: paths
  // have backslashes.
  function isError(reply) { return reply.indexOf('{"error":') === 0; }
  function errorText(reply) {
    var found = /"user_message":"([\s\S]*)"\}\}$/.exec(reply);
    return found ? found[1] : reply;
  }
  function fail(text) {
    print("error: " + text);
    quit(1);
  }

  function start() {
    print("plug-in: " + plugin.queryPluginVersion() + " for " + plugin.queryBrowserEngine());
    print("client: " + plugin.queryVantrelVersion());
    // An application id that begins with "^" is tied to the page's host.
    print("refused session: " + errorText(plugin.initSession("^another.host", "")));
    var reply = plugin.initSession("^" + order.host, order.host);
    if (isError(reply)) return fail(errorText(reply));
    appId = JSON.parse(reply).app_id;
    print("session: " + appId);
    plugin.eventHandler = onEvent;
    receive();
  }

  // ---- Receiving ------------------------------------------------------------------------------

  function body(transfer) {
    return JSON.stringify({
      orvane_vantrel_settings: { app_id: appId },
      transfer_specs: [{
        orvane_vantrel_settings: { use_absolute_destination_path: false },
        transfer_spec: transfer
      }]
    });
  }

  function receive() {
    var refusal = plugin.vantrelHttpRequestAsync(
        "POST", "/v5/vantrel/transfers/start",
        body({ direction: "receive", paths: [{ source: order.source }] }), function (reply) {
          if (isError(reply)) return fail(errorText(reply));
          transferId = JSON.parse(reply).transfers[0].uuid;
          print("transfer started");
          showTransfer();  // its first activity may have come before this answer
        });
    if (refusal) fail(errorText(refusal));
  }

  function onEvent(name, payload) {
    if (name !== "transfer") return print("event " + name + ": " + payload);
    var transfers = JSON.parse(payload).transfers || [];
    for (var i = 0; i < transfers.length; ++i) latest[transfers[i].uuid] = transfers[i];
    showTransfer();
  }

  function showTransfer() {
    var transfer = latest[transferId];
    if (!transfer) return;
    var line = transfer.status + " " + transfer.percentage + "%";
    if (line === lastLine) return;
    lastLine = line;
    print("progress: " + line);
    if (transfer.status === "failed") fail(transfer.status_text);
    if (transfer.status === "completed") {
      print("transfer completed: " + transfer.bytes_written + " bytes");
      setTimeout(choose, 0);
    }
  }

  // ---- Files of the user ----------------------------------------------------------------------

  function choose() {
    plugin.runOpenFileDialogAsync("Choose a file", false, "", function (reply) {
      if (isError(reply)) return fail(errorText(reply));
      var file = JSON.parse(reply).dataTransfer.files[0];
      if (!file) return fail("no file was chosen");
      print("chosen: " + file.name.replace(/^.*\\/, "") + ", " + file.size + " bytes, " + file.type);
      print("its beginning: " + plugin.readChunkAsArrayBuffer(file.name, 0, 30));
      askForMore();
      setTimeout(function () { drop(order.other); }, 0);
    }, true);
  }

  // What the user did not choose may be neither read nor sent.
  function askForMore() {
    print("refused to read: " + errorText(plugin.readAsArrayBuffer(order.other)));
    print("refused to send: " + errorText(plugin.vantrelHttpRequest(
        "POST", "/v5/vantrel/transfers/start",
        body({ direction: "send", paths: [{ source: order.other }] }))));
    try {
      plugin.initSession();
    } catch (e) {
      print("refused call: an argument is missing");
    }
  }

  // ---- Drops: the control's own events, beside those of the handler ---------------------------

  plugin_OnDrop = function (paths) { print("dropped: " + paths.replace(/^.*\\/, "")); };

  plugin_OnDropEx = function (json) {
    var file = JSON.parse(json).dataTransfer.files[0];
    // What was dropped is the user's choice too.
    print("may be read now: " + plugin.readAsArrayBuffer(file.name));
    setTimeout(function () { print("done"); quit(0); }, 0);
  };

  start();
}());
