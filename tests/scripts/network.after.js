load('check.js');
const util = new ZQUtil();
equal(util.getConfiguredESSID(), 'Nobody', 'the network that was set last');
equal(util.getDHCPEnabled(), 'YES', 'and how');
equal(util.getProxy(), '10.0.0.1:8080', 'the proxy, without the line break');
equal(util.getProxyEnabled(), 'YES', 'the proxy is on');
equal(util.getFirstTime(), 'Done', 'the first time is over');
// Whether the restart has come to its end is the system's affair.
equal(util.getESSID().Name, 'Nobody', 'the network by its name');
util.setProxyEnabled('no');
equal(util.getProxyEnabled(), 'NO', 'the proxy is off');
equal(util.getProxy(), '10.0.0.1:8080', 'and kept');
exit(0);
